#include "vdstomgr/catalogue/session.h"

#include "vdstomgr/records/folder_ids.h"
#include "vdstomgr/session/database_session.h"
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

void Session::cFillNewFile() {
  CreateCatalogueTables(m_db->Database());
  InitFieldData(m_db->Database());
}

void Session::cPrepareOpenedFile() {
  m_bFolderChanged = true;
  if (m_db->Database().IsReadOnly()) return;
  for (const DWORD root : {kPersonalRoot, kPublicRoot, kGuestRoot})
    m_db->Run("UPDATE FolderInfo SET szFolderName = '%s' WHERE dwFolderID = %d",
              RootFolderName(root), root);
}

void Session::InitFieldData() {
  m_db->Guarded([&] { InitFieldData(m_db->Database()); });
}

void Session::InitFieldData(CRkDaoDatabase& database) {
  InsertFirstRows(database);
  m_bFolderChanged = true;
}

}  // namespace vdstomgr::catalogue
