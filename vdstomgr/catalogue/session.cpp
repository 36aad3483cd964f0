#include "vdstomgr/catalogue/photo_db_manager.h"
#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/engine.h"
#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/records/folder_ids.h"

using namespace vdstomgr;

namespace {

constexpr std::size_t kMaxPasswordBytes = 20;
constexpr char kLocale[] = ";LANGID=0x0409;CP=1252;COUNTRY=0";

CString CutPassword(const char* password) {
  return CutToBytes(ViewOf(password), kMaxPasswordBytes);
}

}  // namespace

CRkPhotoDBManager::CRkPhotoDBManager() {
  InitializeCriticalSection(&m_csDAO);
  SetLock(&m_csDAO);
}

CRkPhotoDBManager::~CRkPhotoDBManager() {
  CloseDB();
  DeleteSubFolders(m_mapSubFolderDef);
  DeleteCriticalSection(&m_csDAO);
}

bool CRkPhotoDBManager::CreateDB(const char* path, const char* password) {
  return GuardedOutsideCommit(false, [&] {
    if (m_bOpen) dao::Throw(dao::Error::InvalidOperation);
    cSetDBName(path);
    const std::string file = ToUtf8(m_strDBName);
    dao::DeleteDatabase(file);
    m_db.Create(m_strDBName, kLocale, dbVersion40);
    try {
      if (const CString cut = CutPassword(password); !cut.IsEmpty()) m_db.NewPassword("", cut);
      InOneCommit(m_db, [&] { CreateSchema(); });
      m_db.Close();
    } catch (...) {
      CloseQuietly();
      dao::DeleteDatabase(file);
      throw;
    }
    return true;
  });
}

bool CRkPhotoDBManager::OpenDB(const char* path, const char* password) {
  return GuardedOutsideCommit(false, [&] {
    if (m_bOpen) return false;
    m_strOpenPath = path;
    m_strOpenPassword = CutPassword(password);
    cSetDBName(path);
    m_db.Open(m_strDBName, false, false, ";PWD=" + m_strOpenPassword);
    try {
      InOneCommit(m_db, [&] { RestoreRootNames(); });
    } catch (...) {
      CloseQuietly();
      throw;
    }
    return m_bOpen = true;
  });
}

void CRkPhotoDBManager::CloseQuietly() {
  try {
    m_db.Close();
  } catch (const std::exception&) {  // an earlier failure is the one to be told
  }
}

void CRkPhotoDBManager::RestoreRootNames() {
  for (const DWORD root : {kPersonalRoot, kPublicRoot, kGuestRoot})
    Run("UPDATE FolderInfo SET szFolderName = '%s' WHERE dwFolderID = %d", RootFolderName(root),
        root);
  m_nFolderChanged = 1;
}

bool CRkPhotoDBManager::CloseDB() {
  return GuardedOutsideCommit(false, [&] {
    m_bOpen = false;
    m_db.Close();
    return true;
  });
}

bool CRkPhotoDBManager::RefreshDB() {
  return GuardedOutsideCommit(false, [&] {
    const CString path = m_strOpenPath;
    const CString password = m_strOpenPassword;
    CloseDB();
    OpenDB(path, password);
    return true;
  });
}

void CRkPhotoDBManager::DeleteDB(const char* path) {
  GuardedOutsideCommit(false, [&] {
    cSetDBName(path);
    const bool in_use = m_bOpen && m_strDBName == m_strOpenPath;
    return !in_use && dao::DeleteDatabase(ToUtf8(m_strDBName));
  });
}

CString CRkPhotoDBManager::cToDBString(const char* text) const {
  std::string quoted;
  AppendQuoted(quoted, ViewOf(text));
  return quoted;
}
