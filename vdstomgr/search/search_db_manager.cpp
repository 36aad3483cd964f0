#include "vdstomgr/search/search_db_manager.h"

#include "vdstomgr/platform/dao/engine.h"
#include "vdstomgr/search/search_schema.h"
#include "vdstomgr/session/database_session.h"

using namespace vdstomgr;

namespace {

constexpr const char* kVersionedTables[] = {"SearchPhotoMaster", "SearchFolderInfo"};

bool IsOutOfDate(DatabaseSession& db, const char* table) {
  Rows rows = db.Select("SELECT * FROM VersionInfo WHERE szName = '%s'", table);
  return rows.HasRow() && !rows->IsNull("szVersion") && rows->Text("szVersion") != kSearchVersion;
}

void MakeSearchIndexes(DatabaseSession& db) {
  for (const char* statement : kSearchIndexStatements) db.Run("%s", Raw(statement));
  dao::Connection& connection = db.Database().Connection();
  connection.IndexTexts("SearchPhotoMaster", "szFileName");
  connection.IndexTexts("SearchFolderInfo", "szFolderName");
}

}  // namespace

CRkSearchDBManager::CRkSearchDBManager() {
  InitializeCriticalSection(&m_csOwn);
  m_db->SetLock(&m_csOwn);
}

// Without the lock, which its owner may have destroyed already.
CRkSearchDBManager::~CRkSearchDBManager() {
  DeleteSubFolders(m_mapSubFolder);
  DeleteCriticalSection(&m_csOwn);
}

void CRkSearchDBManager::SetDAOCriticalSection(CRITICAL_SECTION* lock) {
  m_db->SetLock(lock != nullptr ? lock : &m_csOwn);
}

void CRkSearchDBManager::cFillNewFile() {
  for (const char* statement : kCreateSearchStatements) m_db->RunOrThrow("%s", Raw(statement));
  for (const char* table : kVersionedTables)
    m_db->RunOrThrow("INSERT INTO VersionInfo(szName, szVersion) values('%s', '%s')", table,
                     kSearchVersion);
  MakeSearchIndexes(*m_db);
}

// What the searches stand on: the order of the two that a column without an index has, and the
// indexes of names. A file that was made without them gets them here.
void CRkSearchDBManager::cPrepareOpenedFile() {
  MakeSearchIndexes(*m_db);
  InitServerNameCache();
  DeleteSubFolders(m_mapSubFolder);
  m_bSubFolderMapMade = false;
}

int CRkSearchDBManager::CheckVersion() {
  return m_db->Guarded(0, [&] {
    for (const char* table : kVersionedTables)
      if (IsOutOfDate(*m_db, table)) return 0;
    return 1;
  });
}
