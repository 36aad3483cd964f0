#include <algorithm>
#include <utility>

#include "vdstomgr/catalogue/folder_columns.h"
#include "vdstomgr/catalogue/photo_db_manager.h"
#include "vdstomgr/platform/message_parser/wqtp_parser.h"
#include "vdstomgr/platform/utility/utility_lib.h"
#include "vdstomgr/records/folder_ids.h"

using namespace vdstomgr;

namespace {

/// Folders that are never deleted: the catalogue's own, and ids that stand for something else.
constexpr DWORD kReservedFolders[] = {kPersonalRoot,  kNoFolder,     kPersonalTrash, kPublicRoot,
                                      kPublicTrash,   kGuestRoot,    kGuestTrash,    FolderID(-250),
                                      FolderID(-251), FolderID(-252)};

}  // namespace

bool CRkPhotoDBManager::AddFolder(DWORD dwFolderID, DWORD dwParentID, const char* szFolderName,
                                  const char* szDesc, int nSpaceType, const char* szIconGUID,
                                  const char* szIconURL, int nPhotoCount, bool bSystemFolder,
                                  int nFolderUpDownType, int bAllowPreviewImage, int bSharedOption,
                                  int bSecureFolder, const char* szGuestID,
                                  const char* szFolderPassword, const char* szSecureFolderSetter,
                                  std::int32_t szModifiedDate, std::int32_t szIModifiedDate,
                                  int nCreatorSubIDType, const char* szCreatorSubID,
                                  const char* szMemoID, int bAllowComment, int nCommentCount) {
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
  return ChangingFolders([&] {
    Rows rows = Select("SELECT * FROM FolderInfo");
    CRkDaoRecordset& row = rows->Recordset();
    row.AddNew();
    FillFolderRow(row, folder);
    for (const auto& [column, text] : texts) row.SetFieldValue(column, text);
    row.Update();
  });
}

bool CRkPhotoDBManager::AddFolder(const FolderArray& folders, bool) {
  return ChangingFolders([&] {
    Rows rows = Select("SELECT * FROM FolderInfo");
    for (const FOLDERINFO& folder : folders) AddFolderRow(rows->Recordset(), folder);
  });
}

bool CRkPhotoDBManager::AddFolderInfo(const FOLDERINFO& folder) {
  return ChangingFolders([&] { WriteFolder(folder, Write::AddOnly); });
}

bool CRkPhotoDBManager::SetFolderInfo(const FOLDERINFO& folder) {
  return ChangingFolders([&] { WriteFolder(folder, Write::EditOnly); });
}

bool CRkPhotoDBManager::SetFolderInfo(const FolderArray& folders, int) {
  return ChangingFolders([&] {
    for (const FOLDERINFO& folder : folders) WriteFolder(folder, Write::AddOrEdit);
  });
}

void CRkPhotoDBManager::WriteFolder(const FOLDERINFO& folder, Write how) {
  Rows rows = Select("SELECT * FROM FolderInfo WHERE dwFolderID = %d", folder.dwFolderID);
  if (rows.HasRow()) {
    if (how != Write::AddOnly) EditFolderRow(rows->Recordset(), folder);
  } else {
    if (how != Write::EditOnly) AddFolderRow(rows->Recordset(), folder);
  }
}

bool CRkPhotoDBManager::RenameFolder(DWORD id, const char* name, const char* desc) {
  return ChangingFolders([&] {
    Run("UPDATE FolderInfo SET szFolderName = '%s', szDesc = '%s' WHERE dwFolderID = %d",
        Quoted(name), Quoted(desc), id);
  });
}

bool CRkPhotoDBManager::UpdateFolderModifiedDate(DWORD id, std::int32_t time) {
  return ChangingFolders([&] {
    Run("UPDATE FolderInfo SET szModifiedDate = '%s' WHERE dwFolderID = %d",
        CUtilityLib::ConvertTimeForDB(time), id);
  });
}

bool CRkPhotoDBManager::UpdateFolderIModifiedDate(DWORD id, std::int32_t time) {
  return ChangingFolders([&] {
    Run("UPDATE FolderInfo SET szIModifiedDate = '%s' WHERE dwFolderID = %d",
        CUtilityLib::ConvertTimeForDB(time), id);
  });
}

bool CRkPhotoDBManager::MoveFolder(DWORD id, DWORD new_parent) {
  return MoveFolder(CDWordArray{id}, new_parent);
}

bool CRkPhotoDBManager::MoveFolder(const CDWordArray& ids, DWORD new_parent) {
  return ChangingFolders([&] {
    for (const DWORD id : ids)
      Run("UPDATE FolderInfo SET dwParentID = %d WHERE dwFolderID = %d", new_parent, id);
  });
}

bool CRkPhotoDBManager::DeleteFolder(DWORD id) {
  const bool reserved = std::ranges::find(kReservedFolders, id) != std::end(kReservedFolders);
  return reserved || DeleteFoldersAndRelations(CDWordArray{id}, true, nullptr);
}

bool CRkPhotoDBManager::DeleteFolderInfo(DWORD id) {
  return DeleteFolderInfo(CDWordArray{id});
}

bool CRkPhotoDBManager::DeleteFolderInfo(const CDWordArray& ids) {
  return ChangingFolders([&] {
    for (const DWORD id : ids) Run("DELETE FROM FolderInfo WHERE dwFolderID = %d", id);
  });
}

// Tags, albums, paths and queues of the deleted photos stay, on purpose.
bool CRkPhotoDBManager::DeleteFoldersAndRelations(const CDWordArray& ids, bool delete_folders,
                                                  CRkCallback progress) {
  if (ids.IsEmpty()) return true;
  return ChangingFolders([&] {
    const CWQTPParser parser("quillora", "TqUploadMgr", "remove");
    const auto count = static_cast<DWORD>(ids.GetSize());
    for (DWORD i = 0; i < count; ++i) {
      const DWORD id = ids[static_cast<int>(i)];
      Run("DELETE FROM PhotoMaster WHERE dwFolderID = %d", id);
      if (delete_folders) Run("DELETE FROM FolderInfo WHERE dwFolderID = %d", id);
      progress.SetProgress(i, count, nullptr, false);
    }
  });
}
