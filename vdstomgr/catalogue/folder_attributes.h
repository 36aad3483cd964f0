#pragma once

#include "vdstomgr/catalogue/folders.h"

namespace vdstomgr::catalogue {

/// What folders are besides their place in the tree.
class VDSTO_API FolderAttributes : public Folders {
 public:
  int GetAllSharedFolderCount();
  int GetAllSecureFolderCount();
  /// Folders whose up/down type is anything but unrestricted.
  int GetAllLimitedUpDownFolderCount();
  int GetAllUpOnlyFolderCount();

  /// SubFolderCountIsLarge against the number of limited, secure and shared folders, as it was when
  /// the process first asked: on purpose it is never counted again.
  int SubFolderCountIsLargeForCheckFolderAuthorityEdit(DWORD id, bool recursive);
  /// The same against the number of upload-only, secure and shared folders.
  int SubFolderCountIsLargeForCheckFolderAuthorityDownload(DWORD id, bool recursive);
};

}  // namespace vdstomgr::catalogue
