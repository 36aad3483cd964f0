#pragma once

#include "vdstomgr/catalogue/albums.h"
#include "vdstomgr/platform/common/callback.h"
#include "vdstomgr/records/trash_photo_info.h"

class CRkDaoRecordset;

namespace vdstomgr::catalogue {

/// Photos that were deleted and may come back.
class VDSTO_API Trash : public Albums {
 public:
  /// Fills a fresh record; false, and the record as it was, when the photo is not in the trash.
  bool GetTrashPhotoInfo(const char* guid, TRASHPHOTOINFO& info);
  /// Appends those in the trash; `progress` is told (index, count, null, false) after each.
  int GetTrashPhotoInfo(const CStringArray& guids, TrashPhotoArray& out, CRkCallback progress);
  /// How many photos are in the trash.
  int GetTrashPhotoCount();

  /// Puts a photo into the trash. When it is there: rewrites it with `bUpdateIfExists`, else false.
  bool AddTrashPhotoInfo(const TRASHPHOTOINFO& info, bool bUpdateIfExists);
  /// Rewrites a photo in the trash. When it is not there: adds it with `bAddIfMissing`, else false.
  bool SetTrashPhotoInfo(const TRASHPHOTOINFO& info, bool bAddIfMissing);
  /// Takes a photo out of the trash for good.
  bool DeleteTrashPhoto(const char* guid);
  /// `progress` is told (0, 0, null, false) after each.
  bool DeleteTrashPhoto(const CStringArray& guids, CRkCallback progress);

 protected:
  /// Fills a fresh record from the current row; false at the end of the rows. May throw.
  bool cGetTrashPhotoInfoByRS(CRkDaoRecordset& rs, TRASHPHOTOINFO& info);
};

}  // namespace vdstomgr::catalogue
