#include "vdstomgr/catalogue/active_folders.h"

#include "vdstomgr/session/database_session.h"

namespace vdstomgr::catalogue {

namespace {

bool IsActive(DatabaseSession& db, DWORD id) {
  return db.Exists("SELECT dwFolderID FROM Config_ActiveFolder WHERE dwFolderID = %d", id);
}

}  // namespace

int ActiveFolders::GetActiveFolder(CDWordArray& ids) {
  return m_db->AskList(ids, "SELECT dwFolderID FROM Config_ActiveFolder");
}

bool ActiveFolders::IsActiveFolder(DWORD id) {
  return m_db->Guarded(false, [&] { return IsActive(*m_db, id); });
}

bool ActiveFolders::SetActiveFolder(DWORD id) {
  return m_db->ForOne(id, [&](const CDWordArray& one) { return AddActiveFolder(one); });
}

bool ActiveFolders::AddActiveFolder(const CDWordArray& ids) {
  return m_db->ForEach(ids, [&](DWORD id) {
    if (!IsActive(*m_db, id))
      m_db->Run("INSERT INTO Config_ActiveFolder (dwFolderID) values (%d)", id);
  });
}

// Folders that are active already meet their key and are left out.
bool ActiveFolders::SetAllFolderActive() {
  return m_db->Execute(
      "INSERT INTO Config_ActiveFolder (dwFolderID) "
      "select dwFolderID FROM FolderInfo WHERE dwFolderID <> 0");
}

bool ActiveFolders::DelActiveFolder(DWORD id) {
  return m_db->ForOne(id, [&](const CDWordArray& one) { return DelActiveFolder(one); });
}

bool ActiveFolders::DelActiveFolder(const CDWordArray& ids) {
  return m_db->ForEach(ids, [&](DWORD id) {
    m_db->Run("DELETE FROM Config_ActiveFolder WHERE dwFolderID = %d", id);
    m_db->Run("DELETE FROM PhotoMaster WHERE dwFolderID = %d", id);
  });
}

bool ActiveFolders::DelNoActivePhoto() {
  return m_db->Execute(
      "DELETE FROM PhotoMaster "
      "WHERE dwFolderID NOT IN (SELECT dwFolderID FROM Config_ActiveFolder)");
}

}  // namespace vdstomgr::catalogue
