#pragma once

#include "vdstomgr/catalogue/trash.h"
#include "vdstomgr/records/photo_sync_info.h"

namespace vdstomgr::catalogue {

/// Handing changed photos over to the synchronisation. Changes mark a photo; MovePhotoSyncFlag
/// takes the marks over into a list of what is pending, so that a change made while a batch is
/// being sent marks its photo anew. Then, until nothing is pending: GetPhotoSyncAllInfo, send,
/// DelPhotoSyncAllInfo.
class VDSTO_API SyncProcess : public Trash {
 public:
  /// Afterwards no photo is marked, and those that were are pending with their old and new marks.
  void MovePhotoSyncFlag();
  /// Appends up to `maxCount` pending photos that the catalogue still holds, in no order.
  bool GetPhotoSyncAllInfo(PhotoSyncArray& out, int maxCount);
  /// What was sent is pending no more; marks set meanwhile stay for the next round.
  bool DelPhotoSyncAllInfo(const PhotoSyncArray& sent);
  /// Photos are neither pending nor marked any more.
  bool DelPhotoSyncProcess(const CStringArray& guids);
};

}  // namespace vdstomgr::catalogue
