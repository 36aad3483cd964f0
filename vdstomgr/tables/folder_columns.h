#pragma once

#include "vdstomgr/records/folder_info.h"
#include "vdstomgr/session/column_kinds.h"

namespace vdstomgr {

/// A folder record and its row of FolderInfo.
inline constexpr ColumnMap kFolderColumns(std::array{
    Number<&FOLDERINFO::dwFolderID>("dwFolderID"),
    Number<&FOLDERINFO::dwParentID>("dwParentID"),
    FixedText<&FOLDERINFO::szFolderName>("szFolderName"),
    FixedText<&FOLDERINFO::szDesc>("szDesc"),
    Number<&FOLDERINFO::nSpaceType>("nSpaceType"),
    FixedText<&FOLDERINFO::szIconGUID>("szIconGUID"),
    FixedText<&FOLDERINFO::szIconURL>("szIconURL"),
    Number<&FOLDERINFO::nPhotoCount>("nPhotoCount"),
    Number<&FOLDERINFO::bSystemFolder>("bSystemFolder"),
    Number<&FOLDERINFO::nFolderUpDownType>("nFolderUpDownType"),
    Number<&FOLDERINFO::bAllowPreviewImage>("bAllowPreviewImage"),
    Number<&FOLDERINFO::bSharedOption>("bSharedOption"),
    Number<&FOLDERINFO::bSecureFolder>("bSecureFolder"),
    FixedText<&FOLDERINFO::szGuestID>("szGuestID"),
    FixedText<&FOLDERINFO::szFolderPassword>("szFolderPassword"),
    FixedText<&FOLDERINFO::szSecureFolderSetter>("szSecureFolderSetter"),
    Date<&FOLDERINFO::szModifiedDate>("szModifiedDate"),
    Date<&FOLDERINFO::szIModifiedDate>("szIModifiedDate"),
    Number<&FOLDERINFO::nCreatorSubIDType>("nCreatorSubIDType"),
    FixedText<&FOLDERINFO::szCreatorSubID>("szCreatorSubID"),
    FixedText<&FOLDERINFO::szMemoID>("szMemoID"),
    Number<&FOLDERINFO::bAllowComment>("bAllowComment"),
    Number<&FOLDERINFO::nCommentCount>("nCommentCount"),
});

/// What a folder's name needs: its place in the tree, and the name itself.
inline constexpr ColumnMap kFolderNameColumns(std::array{
    Number<&FOLDERINFO::dwParentID>("dwParentID"),
    Number<&FOLDERINFO::dwFolderID>("dwFolderID"),
    FixedText<&FOLDERINFO::szFolderName>("szFolderName"),
});

}  // namespace vdstomgr
