#include "vdstomgr/catalogue/versions.h"

#include "vdstomgr/session/database_session.h"
#include "vdstomgr/tables/schema_statements.h"

namespace vdstomgr::catalogue {

namespace {

// A version row that is missing stays missing, so that the table is made anew at every check.
void RenewTrashTable(DatabaseSession& db) {
  db.Run("DROP TABLE PhotoTrashMaster");
  db.Run("%s", Raw(kCreatePhotoTrashMaster));
  db.Run("%s", Raw(kIndexPhotoTrashMaster));
  db.Run("UPDATE VersionInfo SET szVersion = '%s' WHERE szName = 'PhotoTrashMaster'",
         kPhotoTrashMasterVersion);
}

}  // namespace

CString Versions::GetVersionInfo(const char* name) {
  return m_db->AskText("SELECT szVersion FROM VersionInfo WHERE szName = '%s'", Raw(name));
}

bool Versions::SetVersionInfo(const char* name, const char* version) {
  return m_db->Execute("UPDATE VersionInfo SET szVersion = '%s' WHERE szName = '%s'", Raw(version),
                       Raw(name));
}

bool Versions::CheckPhotoMasterDBVersion() {
  return m_db->Guarded(false, [&] {
    if (GetVersionInfo("PhotoMaster") != kPhotoMasterVersion) return false;
    if (GetVersionInfo("PhotoTrashMaster") != kPhotoTrashMasterVersion) RenewTrashTable(*m_db);
    return true;
  });
}

// An older version row keeps its value, because the INSERT meets its key: such a table is made anew
// at every call. A table without a row is kept, because the CREATE meets it.
bool Versions::CreateSyncUploadListTable(CRkDaoDatabase& database) {
  return m_db->Guarded(true, [&] {
    const CString version = GetVersionInfo("SyncUploadList");
    if (version == kSyncUploadListVersion) return true;
    if (!version.IsEmpty()) m_db->RunOn(database, "DROP TABLE SyncUploadList");
    m_db->RunOn(database, "%s", Raw(kCreateSyncUploadList));
    for (const char* index : kIndexSyncUploadList) m_db->RunOn(database, "%s", Raw(index));
    m_db->RunOn(database,
                "INSERT INTO VersionInfo(szName, szVersion) values('SyncUploadList', '%s')",
                kSyncUploadListVersion);
    return true;
  });
}

int Versions::GetVersionFolderList(CDWordArray& active, CDWordArray& other) {
  return m_db->Guarded(0, [&] {
    for (Row& row :
         m_db->Select("SELECT a.dwFolderID, b.dwFolderID as IsVersion FROM FolderInfo as a "
                      "LEFT OUTER JOIN Config_ActiveFolder as b "
                      "ON a.dwFolderID = b.dwFolderID"))
      (row.IsNull("IsVersion") ? other : active).Add(row.Id("dwFolderID"));
    return active.GetSize() + other.GetSize();
  });
}

}  // namespace vdstomgr::catalogue
