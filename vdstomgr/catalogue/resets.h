#pragma once

#include "vdstomgr/catalogue/deletion.h"

namespace vdstomgr::catalogue {

/// Emptying whole tables, and a repair.
class VDSTO_API Resets : public Deletion {
 public:
  /// Every photo; tags, albums and queues that name it stay.
  bool ResetPhotoMaster();
  bool ResetPhotoTag();
  bool ResetTrashPhoto();
  /// Leaves the roots and their trash folders.
  bool ResetFolder();
  bool ResetActiveFolder();
  bool ResetTagInfo();
  /// Leaves room 0.
  bool ResetRoomInfo();
  bool ResetAlbumInfo();
  bool ResetPhotoAlbum();
  bool ResetCameraModel();
  bool ResetCameraLens();
  bool ResetMyCameraModel();
  bool ResetMyCameraLens();
  bool ResetPhotoSyncProcess();
  bool ResetPhotoRP();
  bool ResetPhotoOP();
  /// Forgets the changes of folders, tags and deleted photos, not those of dates.
  bool ResetAllNotify();

  /// Empties the catalogue for a rebuild from the server's history, then adds the gallery (room 0)
  /// and the versions of photos, camera models and lenses. Every folder goes, also those that
  /// ResetFolder leaves, and every other version. Full-size paths, upload queues and what is being
  /// synchronised stay. Stops at the first statement that fails.
  bool ResetAllPhotoInfo_ForHistoryManager();

  /// Deletes the photos of a folder that is missing. Works for one missing folder: with more it
  /// deletes nothing and answers false.
  bool ReviseLogicalError();
};

}  // namespace vdstomgr::catalogue
