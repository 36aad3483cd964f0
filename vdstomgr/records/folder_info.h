#pragma once

#include <cstdint>

#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/types.h"

/// One folder of the catalogue: a row of FolderInfo. Texts are in the process's code page and end
/// with a zero; what is longer than its field is cut between characters.
struct FOLDERINFO {
  DWORD dwFolderID = 0;
  DWORD dwParentID = 0;  ///< 0xFFFFFFFF for a top-level folder
  char szFolderName[520] = {};
  char szDesc[101] = {};
  std::int32_t nSpaceType = -1;  ///< 0 personal, 1 public, 2 guest, -1 unknown
  char szIconGUID[37] = {};      ///< the photo that is the folder's icon
  char szIconURL[256] = {};
  std::int32_t nPhotoCount = 0;
  BOOL bSystemFolder = 0;
  std::int32_t nFolderUpDownType = 0;  ///< 3 unrestricted, 2 upload only, else limited
  BOOL bAllowPreviewImage = 0;
  BOOL bSharedOption = 0;
  BOOL bSecureFolder = 0;
  char szGuestID[21] = {};
  char szFolderPassword[21] = {};
  char szSecureFolderSetter[21] = {};
  std::int32_t szModifiedDate = 0;   ///< seconds since 1970
  std::int32_t szIModifiedDate = 0;  ///< seconds since 1970
  std::int32_t nCreatorSubIDType = -1;
  char szCreatorSubID[21] = {};
  char szMemoID[37] = {};
  BOOL bAllowComment = 1;
  std::int32_t nCommentCount = 0;
};

namespace vdstomgr {
using FolderArray = CArray<FOLDERINFO, FOLDERINFO&>;
}
