#include "vdstomgr/catalogue/session.h"

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/engine.h"
#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/records/folder_ids.h"
#include "vdstomgr/session/database_file.h"
#include "vdstomgr/session/stale_at_exit.h"
#include "vdstomgr/tables/catalogue_schema.h"

namespace vdstomgr::catalogue {

Session::Session() {
  InitializeCriticalSection(&m_csDAO);
  m_db->SetLock(&m_csDAO);
}

Session::~Session() {
  CloseDB();
  DeleteCriticalSection(&m_csDAO);
}

bool Session::CreateDB(const char* path, const char* password) {
  return m_db->GuardedOutsideCommit(false, [&] {
    if (m_bOpen) dao::Throw(dao::Error::InvalidOperation);
    cSetDBName(path);
    CreateDatabaseFile(*m_db, m_strDBName, password, [&] {
      CreateCatalogueTables(m_db->Database());
      InitFieldData(m_db->Database());
    });
    return true;
  });
}

bool Session::OpenDB(const char* path, const char* password) {
  if (m_bOpen) return false;
  return m_db->GuardedOutsideCommit(false, [&] {
    if (m_bOpen) return false;  // by another thread meanwhile
    m_strOpenPath = path;
    m_strOpenPassword = password;
    cSetDBName(path);
    OpenDatabaseFile(*m_db, m_strDBName, m_strOpenPassword, [&] {
      for (const DWORD root : {kPersonalRoot, kPublicRoot, kGuestRoot})
        m_db->Run("UPDATE FolderInfo SET szFolderName = '%s' WHERE dwFolderID = %d",
                  RootFolderName(root), root);
    });
    m_bFolderChanged = true;
    m_bOpen = true;
    return true;
  });
}

bool Session::CloseDB() {
  return m_db->GuardedOutsideCommit(false, [&] {
    const StaleAtExit change = Changing();  // the next file has another queue
    m_bOpen = false;
    m_db->Database().Close();
    return true;
  });
}

bool Session::RefreshDB() {
  return m_db->GuardedOutsideCommit(false, [&] {
    const CString path = m_strOpenPath;
    const CString password = m_strOpenPassword;
    CloseDB();
    OpenDB(path, password);
    return true;
  });
}

void Session::DeleteDB(const char* path) {
  m_db->GuardedOutsideCommit(false, [&] {
    cSetDBName(path);
    const bool in_use = m_bOpen && m_strDBName == m_strOpenPath;
    return !in_use && dao::DeleteDatabase(ToUtf8(m_strDBName));
  });
}

void Session::InitFieldData() {
  m_db->Guarded([&] { InitFieldData(m_db->Database()); });
}

void Session::InitFieldData(CRkDaoDatabase& database) {
  InsertFirstRows(database);
  m_bFolderChanged = true;
}

CString Session::cToDBString(const char* text) const {
  std::string quoted;
  AppendQuoted(quoted, ViewOf(text));
  return quoted;
}

}  // namespace vdstomgr::catalogue
