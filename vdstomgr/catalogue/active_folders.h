#pragma once

#include "vdstomgr/catalogue/folder_attributes.h"

namespace vdstomgr::catalogue {

/// The active folders: those whose photos the catalogue keeps.
class VDSTO_API ActiveFolders : public FolderAttributes {
 public:
  /// Appends the active folders, in no order.
  int GetActiveFolder(CDWordArray& ids);
  /// Is the folder active?
  bool IsActiveFolder(DWORD id);
  /// Makes a folder active; true also when it is already.
  bool SetActiveFolder(DWORD id);
  /// Adds those that are not active yet.
  bool AddActiveFolder(const CDWordArray& ids);
  /// Every folder but the personal root.
  bool SetAllFolderActive();
  /// Also deletes the photos of the folder; the folder stays.
  bool DelActiveFolder(DWORD id);
  bool DelActiveFolder(const CDWordArray& ids);
  /// Deletes the photos that are in no active folder.
  bool DelNoActivePhoto();
};

}  // namespace vdstomgr::catalogue
