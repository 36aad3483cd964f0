#pragma once

#include "vdstomgr/records/folder_info.h"
#include "vdstomgr/records/photo_info.h"
#include "vdstomgr/session/column_kinds.h"

namespace vdstomgr {

/// A photo record and its row of SearchPhotoMaster.
inline constexpr ColumnMap kSearchPhotoColumns(std::array{
    FixedText<&PHOTOINFO::szGUID>("szGUID"),
    FixedText<&PHOTOINFO::szMD5>("szMD5"),
    PropertyText<&PHOTOINFO::GetFileName, &PHOTOINFO::SetFileName>("szFileName"),
    RealSize<&PHOTOINFO::FileSize>("dxFileSize"),
    Number<&PHOTOINFO::dwFolderID>("dwFolderID"),
    PropertyText<&PHOTOINFO::GetOPURL, &PHOTOINFO::SetOPURL>("szOPURL"),
    Date<&PHOTOINFO::RegDate>("szRegDate"),
    Number<&PHOTOINFO::UploadEnd>("byteUploadEnd"),
});

/// A folder record and its row of SearchFolderInfo. A date that is none reads as -1, on purpose.
inline constexpr ColumnMap kSearchFolderColumns(std::array{
    Number<&FOLDERINFO::dwFolderID>("dwFolderID"),
    Number<&FOLDERINFO::dwParentID>("dwParentID"),
    FixedText<&FOLDERINFO::szFolderName>("szFolderName"),
    UncheckedDate<&FOLDERINFO::szModifiedDate>("szModifiedDate"),
});

}  // namespace vdstomgr
