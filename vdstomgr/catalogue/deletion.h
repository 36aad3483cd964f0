#pragma once

#include "vdstomgr/catalogue/notifications.h"

namespace vdstomgr::catalogue {

/// Deleting folders and photos together with what hangs on them.
class VDSTO_API Deletion : public Notifications {
 public:
  /// Deletes the folder with its photos, not its sub-folders. The catalogue's own folders stay.
  bool DeleteFolder(DWORD id);
  /// Deletes the photos of the folders, and with `delete_folders` the folders; `progress` is told
  /// (index, count, null, false) after each, with the lock held.
  bool DeleteFoldersAndRelations(const CDWordArray& ids, bool delete_folders, CRkCallback progress);
  /// Deletes the photos with their tags, their places in albums and their local paths; `progress`
  /// as above. Folders keep their stored number of photos.
  bool DeletePhotosAndRelations(const CStringArray& guids, CRkCallback progress);
  bool DeletePhotosAndRelations(const char* guid, CRkCallback progress);
};

}  // namespace vdstomgr::catalogue
