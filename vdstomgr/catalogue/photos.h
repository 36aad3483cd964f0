#pragma once

#include "vdstomgr/catalogue/active_folders.h"
#include "vdstomgr/platform/common/callback.h"
#include "vdstomgr/records/count_in_folder.h"
#include "vdstomgr/records/photo_info.h"

class CRkDaoRecordset;

namespace vdstomgr::catalogue {

/// Photos as whole records, and the questions that are asked of them.
class VDSTO_API Photos : public ActiveFolders {
 public:
  /// ---- Whole records ----

  /// Adds a photo. When its GUID is taken: rewrites it with `bUpdateIfExists`, else false.
  bool AddPhotoInfo(const PHOTOINFO& info, bool bUpdateIfExists);
  /// Adds all, up to the first whose GUID is taken.
  bool AddPhotoInfo(const PhotoArray& list);
  /// Rewrites a photo. When it is missing: adds it with `bAddIfMissing`, else false.
  bool SetPhotoInfo(const PHOTOINFO& info, bool bAddIfMissing);
  /// Fills a fresh record; false, and the record as it was, when there is no such photo.
  bool GetPhotoInfo(const char* guid, PHOTOINFO& info);
  /// Appends the photos that exist; `progress` is told (index, count, null, false) after each.
  int GetPhotoInfo(const CStringArray& guids, PhotoArray& out, CRkCallback progress);

  /// ---- Questions ----

  /// The file name; empty when there is no such photo.
  CString GetPhotoName(const char* guid);
  /// 0xFFFFFFFF when there is no such photo.
  DWORD GetFolderID(const char* guid);
  /// Is there a photo of that name in the folder?
  bool IsPhoto(DWORD folder, const char* file_name);
  /// How many photos the catalogue holds.
  int GetPhotoCount();
  /// The first photo of that name in the folder, or all of them.
  CString GetPhotoGUID(DWORD folder, const char* file_name);
  int GetPhotoGUID(DWORD folder, const char* file_name, CStringArray& out);
  /// The photos of a folder, not of those below it, in no order.
  int GetPhotoInFolder(DWORD folder, CStringArray& out);
  /// By file name.
  int GetPhotoInFolder(DWORD folder, PhotoArray& out);
  /// One record per folder that holds photos.
  int GetPhotoCountInFolders(CountArray& out);
  /// The same for the given folders; an empty list of them is a failure.
  int GetPhotoCountInFolders(const CDWordArray& folders, CountArray& out);
  /// A name made from `file_name`, never itself, that no photo of the folder has; empty after
  /// 10,000.
  CString GetEditSaveFileName(const char* file_name, DWORD folder);

 protected:
  /// Fills a fresh record from the current row; false at the end of the rows. May throw.
  bool cGetPhotoInfoByRS(CRkDaoRecordset& rs, PHOTOINFO& info);
};

}  // namespace vdstomgr::catalogue
