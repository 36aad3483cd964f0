#include "vdstomgr/session/database_owner.h"

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/engine.h"
#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/session/database_file.h"

namespace vdstomgr {

bool DatabaseOwner::CreateDB(const char* path, const char* password) {
  return m_db->GuardedOutsideCommit(false, [&] {
    if (m_bOpen) dao::Throw(dao::Error::InvalidOperation);
    cSetDBName(path);
    CreateDatabaseFile(*m_db, m_strDBName, password, [&] { cFillNewFile(); });
    return true;
  });
}

bool DatabaseOwner::OpenDB(const char* path, const char* password) {
  return cOpen(path, password, false);
}

struct OwnerAccess {
  static bool OpenForReading(DatabaseOwner& owner, const char* path, const char* password) {
    return owner.cOpen(path, password, true);
  }
};

bool OpenForReading(DatabaseOwner& owner, const char* path, const char* password) {
  return OwnerAccess::OpenForReading(owner, path, password);
}

bool DatabaseOwner::cOpen(const char* path, const char* password, bool read_only) {
  if (m_bOpen) return false;
  return m_db->GuardedOutsideCommit(false, [&] {
    if (m_bOpen) return false;  // by another thread meanwhile
    m_strOpenPath = path;
    m_strOpenPassword = password;
    m_bOpenReadOnly = read_only;
    cSetDBName(path);
    OpenDatabaseFile(*m_db, m_strDBName, m_strOpenPassword, read_only,
                     [&] { cPrepareOpenedFile(); });
    m_bOpen = true;
    return true;
  });
}

bool DatabaseOwner::CloseDB() {
  return m_db->GuardedOutsideCommit(false, [&] {
    m_bOpen = false;
    cForgetFile();
    m_db->Database().Close();
    return true;
  });
}

bool DatabaseOwner::RefreshDB() {
  return m_db->GuardedOutsideCommit(false, [&] {
    const CString path = m_strOpenPath;
    const CString password = m_strOpenPassword;
    CloseDB();
    cOpen(path, password, m_bOpenReadOnly);
    return true;
  });
}

void DatabaseOwner::DeleteDB(const char* path) {
  m_db->GuardedOutsideCommit(false, [&] {
    cSetDBName(path);
    const bool in_use = m_bOpen && m_strDBName == m_strOpenPath;
    return !in_use && dao::DeleteDatabase(ToUtf8(m_strDBName));
  });
}

bool DatabaseOwner::InOneCommit(const std::function<void()>& body) {
  return m_db->Guarded(false, [&] {
    body();
    return true;
  });
}

CString DatabaseOwner::cToDBString(const char* text) const {
  std::string quoted;
  AppendQuoted(quoted, ViewOf(text));
  return quoted;
}

}  // namespace vdstomgr
