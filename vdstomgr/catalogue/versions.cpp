#include "vdstomgr/catalogue/photo_db_manager.h"
#include "vdstomgr/catalogue/schema_statements.h"

using namespace vdstomgr;

CString CRkPhotoDBManager::GetVersionInfo(const char* name) {
  return Guarded(CString(), [&] {
    return FirstText(Select("SELECT szVersion FROM VersionInfo WHERE szName = '%s'", name),
                     "szVersion");
  });
}

bool CRkPhotoDBManager::SetVersionInfo(const char* name, const char* version) {
  return Guarded(false, [&] {
    Run("UPDATE VersionInfo SET szVersion = '%s' WHERE szName = '%s'", version, name);
    return true;
  });
}

bool CRkPhotoDBManager::CheckPhotoMasterDBVersion() {
  return Guarded(false, [&] {
    if (GetVersionInfo("PhotoMaster") != kPhotoMasterVersion) return false;
    if (GetVersionInfo("PhotoTrashMaster") != kPhotoTrashMasterVersion) RenewTrashTable();
    return true;
  });
}

// A version row that is missing stays missing, so that the table is made anew at every check.
void CRkPhotoDBManager::RenewTrashTable() {
  Run("DROP TABLE PhotoTrashMaster");
  Run(kCreatePhotoTrashMaster);
  Run(kIndexPhotoTrashMaster);
  Run("UPDATE VersionInfo SET szVersion = '%s' WHERE szName = 'PhotoTrashMaster'",
      kPhotoTrashMasterVersion);
}

// An older version row keeps its value, because the INSERT meets its key: such a table is made anew
// at every call. A table without a row is kept, because the CREATE meets it.
bool CRkPhotoDBManager::CreateSyncUploadListTable(CRkDaoDatabase& database) {
  return Guarded(true, [&] {
    const CString version = GetVersionInfo("SyncUploadList");
    if (version == kSyncUploadListVersion) return true;
    if (!version.IsEmpty()) RunIn(database, "DROP TABLE SyncUploadList");
    RunIn(database, kCreateSyncUploadList);
    RunIn(database, "INSERT INTO VersionInfo(szName, szVersion) values('SyncUploadList', '%s')",
          kSyncUploadListVersion);
    return true;
  });
}

int CRkPhotoDBManager::GetVersionFolderList(CDWordArray& active, CDWordArray& other) {
  return Guarded(0, [&] {
    for (Row& row : Select("SELECT a.dwFolderID, b.dwFolderID as IsVersion FROM FolderInfo as a "
                           "LEFT OUTER JOIN Config_ActiveFolder as b "
                           "ON a.dwFolderID = b.dwFolderID"))
      (row.IsNull("IsVersion") ? other : active).Add(row.Id("dwFolderID"));
    return active.GetSize() + other.GetSize();
  });
}
