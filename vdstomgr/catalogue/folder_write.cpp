#include <utility>

#include "vdstomgr/catalogue/folder_steps.h"
#include "vdstomgr/catalogue/folders.h"
#include "vdstomgr/session/stale_at_exit.h"

namespace vdstomgr::catalogue {

namespace {

void WriteFolder(DatabaseSession& db, const FOLDERINFO& folder, Write how) {
  Rows rows = db.Select("SELECT * FROM FolderInfo WHERE dwFolderID = %d", folder.dwFolderID);
  kFolderColumns.WriteRow(rows->Recordset(), folder, how);
}

}  // namespace

bool Folders::AddFolder(DWORD dwFolderID, DWORD dwParentID, const char* szFolderName,
                        const char* szDesc, int nSpaceType, const char* szIconGUID,
                        const char* szIconURL, int nPhotoCount, bool bSystemFolder,
                        int nFolderUpDownType, int bAllowPreviewImage, int bSharedOption,
                        int bSecureFolder, const char* szGuestID, const char* szFolderPassword,
                        const char* szSecureFolderSetter, std::int32_t szModifiedDate,
                        std::int32_t szIModifiedDate, int nCreatorSubIDType,
                        const char* szCreatorSubID, const char* szMemoID, int bAllowComment,
                        int nCommentCount) {
  FOLDERINFO folder;
  folder.dwFolderID = dwFolderID;
  folder.dwParentID = dwParentID;
  folder.nSpaceType = nSpaceType;
  folder.nPhotoCount = nPhotoCount;
  folder.bSystemFolder = bSystemFolder;
  folder.nFolderUpDownType = nFolderUpDownType;
  folder.bAllowPreviewImage = bAllowPreviewImage;
  folder.bSharedOption = bSharedOption;
  folder.bSecureFolder = bSecureFolder;
  folder.szModifiedDate = szModifiedDate;
  folder.szIModifiedDate = szIModifiedDate;
  folder.nCreatorSubIDType = nCreatorSubIDType;
  folder.bAllowComment = bAllowComment;
  folder.nCommentCount = nCommentCount;
  // Texts go past the record, whose fields are narrower than the table's columns.
  const std::pair<const char*, const char*> texts[] = {
      {"szFolderName", szFolderName},
      {"szDesc", szDesc},
      {"szIconGUID", szIconGUID},
      {"szIconURL", szIconURL},
      {"szGuestID", szGuestID},
      {"szFolderPassword", szFolderPassword},
      {"szCreatorSubID", szCreatorSubID},
      {"szMemoID", szMemoID},
      {"szSecureFolderSetter", szSecureFolderSetter}};
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->Guarded(false, [&] {
    Rows rows = m_db->Select("SELECT * FROM FolderInfo");
    CRkDaoRecordset& row = rows->Recordset();
    row.AddNew();
    kFolderColumns.Fill(row, folder);
    for (const auto& [column, text] : texts) row.SetFieldValue(column, text);
    row.Update();
    return true;
  });
}

bool Folders::AddFolder(const FolderArray& folders, bool) {
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->AddRecords(folders, kFolderColumns, "SELECT * FROM FolderInfo");
}

// Whether there was a row to leave or to rewrite does not count: true unless writing failed.
bool Folders::AddFolderInfo(const FOLDERINFO& folder) {
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->Guarded(false, [&] {
    WriteFolder(*m_db, folder, Write::AddOnly);
    return true;
  });
}

bool Folders::SetFolderInfo(const FOLDERINFO& folder) {
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->Guarded(false, [&] {
    WriteFolder(*m_db, folder, Write::EditOnly);
    return true;
  });
}

bool Folders::SetFolderInfo(const FolderArray& folders, int) {
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->ForEach(
      folders, [&](const FOLDERINFO& folder) { WriteFolder(*m_db, folder, Write::AddOrEdit); });
}

bool Folders::RenameFolder(DWORD id, const char* name, const char* desc) {
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->Execute(
      "UPDATE FolderInfo SET szFolderName = '%s', szDesc = '%s' WHERE dwFolderID = %d", name, desc,
      id);
}

bool Folders::UpdateFolderModifiedDate(DWORD id, std::int32_t time) {
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->Execute("UPDATE FolderInfo SET szModifiedDate = '%s' WHERE dwFolderID = %d",
                       DateText{time}, id);
}

bool Folders::UpdateFolderIModifiedDate(DWORD id, std::int32_t time) {
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->Execute("UPDATE FolderInfo SET szIModifiedDate = '%s' WHERE dwFolderID = %d",
                       DateText{time}, id);
}

bool Folders::MoveFolder(DWORD id, DWORD new_parent) {
  return m_db->ForOne(id, [&](const CDWordArray& one) { return MoveFolder(one, new_parent); });
}

bool Folders::MoveFolder(const CDWordArray& ids, DWORD new_parent) {
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->ExecuteForEach(ids, "UPDATE FolderInfo SET dwParentID = %d WHERE dwFolderID = %d",
                              new_parent, kEachId);
}

bool Folders::DeleteFolderInfo(DWORD id) {
  return m_db->ForOne(id, [&](const CDWordArray& one) { return DeleteFolderInfo(one); });
}

bool Folders::DeleteFolderInfo(const CDWordArray& ids) {
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->ExecuteForEach(ids, "DELETE FROM FolderInfo WHERE dwFolderID = %d", kEachId);
}

}  // namespace vdstomgr::catalogue
