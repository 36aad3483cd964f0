#include "vdstomgr/catalogue/folder_columns.h"

#include "vdstomgr/catalogue/column_kinds.h"
#include "vdstomgr/platform/utility/utility_lib.h"
#include "vdstomgr/records/folder_ids.h"

namespace vdstomgr {

namespace {

using F = FOLDERINFO;

CString DateText(std::int32_t time) {
  return CUtilityLib::ConvertTimeForDB(time);
}

constexpr ColumnMap kFolderColumns({
    Number<&F::dwFolderID>("dwFolderID"),
    Number<&F::dwParentID>("dwParentID"),
    FixedText<&F::szFolderName>("szFolderName"),
    FixedText<&F::szDesc>("szDesc"),
    Number<&F::nSpaceType>("nSpaceType"),
    FixedText<&F::szIconGUID>("szIconGUID"),
    FixedText<&F::szIconURL>("szIconURL"),
    Number<&F::nPhotoCount>("nPhotoCount"),
    Number<&F::bSystemFolder>("bSystemFolder"),
    Number<&F::nFolderUpDownType>("nFolderUpDownType"),
    Number<&F::bAllowPreviewImage>("bAllowPreviewImage"),
    Number<&F::bSharedOption>("bSharedOption"),
    Number<&F::bSecureFolder>("bSecureFolder"),
    FixedText<&F::szGuestID>("szGuestID"),
    FixedText<&F::szFolderPassword>("szFolderPassword"),
    FixedText<&F::szSecureFolderSetter>("szSecureFolderSetter"),
    Time<&F::szModifiedDate, DateText>("szModifiedDate"),
    Time<&F::szIModifiedDate, DateText>("szIModifiedDate"),
    Number<&F::nCreatorSubIDType>("nCreatorSubIDType"),
    FixedText<&F::szCreatorSubID>("szCreatorSubID"),
    FixedText<&F::szMemoID>("szMemoID"),
    Number<&F::bAllowComment>("bAllowComment"),
    Number<&F::nCommentCount>("nCommentCount"),
});

}  // namespace

FOLDERINFO ReadFolder(CDaoRecordset& row) {
  FOLDERINFO folder;
  kFolderColumns.Read(row, folder);
  return folder;
}

FOLDERINFO ReadNamedFolder(CDaoRecordset& row) {
  FOLDERINFO folder = ReadFolder(row);
  FillRootName(folder);
  return folder;
}

void AppendNamedFolders(Rows rows, FolderArray& folders) {
  for (Row& row : rows) folders.Add(ReadNamedFolder(row.Recordset()));
}

void FillRootName(FOLDERINFO& folder) {
  if (folder.szFolderName[0] == '\0' && IsRootFolder(folder.dwFolderID))
    CopyToFixed(folder.szFolderName, RootFolderName(folder.dwFolderID));
}

void AddFolderRow(CDaoRecordset& rows, const FOLDERINFO& folder) {
  kFolderColumns.Add(rows, folder);
}
void EditFolderRow(CDaoRecordset& row, const FOLDERINFO& folder) {
  kFolderColumns.Edit(row, folder);
}
void FillFolderRow(CDaoRecordset& row, const FOLDERINFO& folder) {
  kFolderColumns.Fill(row, folder);
}

}  // namespace vdstomgr
