#include "vdstomgr/search/query_builder.h"
#include "vdstomgr/search/search_columns.h"
#include "vdstomgr/search/search_db_manager.h"
#include "vdstomgr/session/database_session.h"

using namespace vdstomgr;

namespace {

/// Appends the first `max` rows of a query as records. The count is looked at behind each row, so
/// that one row comes whatever `max` is, on purpose.
template <class List, class Map, class... Arguments>
int AppendFirst(DatabaseSession& db, List& records, int max, const Map& map,
                SqlFormatOf<Arguments...> query, const Arguments&... arguments) {
  return db.Guarded(0, [&] {
    int count = 0;
    for (Row& row : db.Select<Arguments...>(query, arguments...)) {
      records.Add(map.ReadFresh(row.Recordset()));
      if (++count >= max) break;
    }
    return 1;
  });
}

}  // namespace

bool CRkSearchDBManager::AddPhotoInfo(const PHOTOINFO& photo) {
  return m_db->WriteRecord(photo, kSearchPhotoColumns, Write::AddOnly,
                           "SELECT * FROM SearchPhotoMaster WHERE szGUID = '%s'",
                           Raw(photo.szGUID));
}

bool CRkSearchDBManager::AddPhotoInfo(const PhotoArray& photos) {
  return m_db->AddRecords(photos, kSearchPhotoColumns, "SELECT * FROM SearchPhotoMaster");
}

bool CRkSearchDBManager::SetPhotoInfo(const PHOTOINFO& photo) {
  return m_db->WriteRecord(photo, kSearchPhotoColumns, Write::EditOnly,
                           "SELECT * FROM SearchPhotoMaster WHERE szGUID = '%s'",
                           Raw(photo.szGUID));
}

bool CRkSearchDBManager::SetFolder(const char* guid, DWORD folder) {
  return m_db->Execute("UPDATE SearchPhotoMaster SET dwFolderID = %d WHERE szGUID = '%s'", folder,
                       Raw(guid));
}

bool CRkSearchDBManager::SetFolder(const CStringArray& guids, DWORD folder) {
  return m_db->ExecuteForEach(
      guids, "UPDATE SearchPhotoMaster SET dwFolderID = %d WHERE szGUID = '%s'", folder, kEachGuid);
}

bool CRkSearchDBManager::DeletePhoto(const char* guid) {
  return m_db->Execute("DELETE FROM SearchPhotoMaster WHERE szGUID = '%s'", Raw(guid));
}

bool CRkSearchDBManager::DeletePhoto(const CString& guid) {
  return DeletePhoto(guid.GetString());
}

bool CRkSearchDBManager::DeletePhoto(const CStringArray& guids) {
  return m_db->ExecuteForEach(guids, "DELETE FROM SearchPhotoMaster WHERE szGUID = '%s'",
                              kEachGuid);
}

bool CRkSearchDBManager::DeletePhoto(DWORD folder, const char* name) {
  return m_db->Execute("DELETE FROM SearchPhotoMaster WHERE dwFolderID = %d AND szFileName = '%s'",
                       folder, name);
}

bool CRkSearchDBManager::GetPhotoInfo(const char* guid, PHOTOINFO& photo) {
  return m_db->AskRecord(photo, kSearchPhotoColumns,
                         "SELECT * FROM SearchPhotoMaster WHERE szGUID = '%s'", Raw(guid));
}

int CRkSearchDBManager::GetPhotoInfo(const CStringArray& guids, PhotoArray& photos,
                                     CRkCallback progress) {
  return m_db->AskEachRecord(guids, photos, kSearchPhotoColumns, progress,
                             "SELECT * FROM SearchPhotoMaster WHERE szGUID = '%s'");
}

DWORD CRkSearchDBManager::GetFolderID(const char* guid) {
  return m_db->AskId("SELECT dwFolderID FROM SearchPhotoMaster WHERE szGUID = '%s'", Raw(guid));
}

int CRkSearchDBManager::GetPhotoInFolder(DWORD folder, CStringArray& guids) {
  return m_db->AskList(guids, "SELECT szGUID FROM SearchPhotoMaster WHERE dwFolderID = %d", folder);
}

int CRkSearchDBManager::GetPhotoInFolder(DWORD folder, PhotoArray& photos) {
  return m_db->AskRecords(
      photos, kSearchPhotoColumns,
      "SELECT * FROM SearchPhotoMaster WHERE dwFolderID = %d ORDER BY szFileName", folder);
}

int CRkSearchDBManager::GetTotalNoOfFiles() {
  return m_db->AskInteger(0, "SELECT COUNT(*) as nCount FROM SearchPhotoMaster");
}

int CRkSearchDBManager::SearchRecentUpload(PhotoArray& photos, int max) {
  return AppendFirst(*m_db, photos, max, kSearchPhotoColumns,
                     "SELECT * FROM SearchPhotoMaster ORDER BY szRegDate DESC");
}

int CRkSearchDBManager::SearchBigFile(PhotoArray& photos, int max) {
  return AppendFirst(*m_db, photos, max, kSearchPhotoColumns,
                     "SELECT * FROM SearchPhotoMaster ORDER BY dxFileSize DESC");
}

int CRkSearchDBManager::SearchFileName(const char* text, PhotoArray& photos, int max) {
  const CString query = BuildSearchQuery("SearchPhotoMaster", "szFileName", text);
  return AppendFirst(*m_db, photos, max, kSearchPhotoColumns, "%s", Raw(query));
}

int CRkSearchDBManager::SearchFolderName(const char* text, FolderArray& folders, int max) {
  const CString query = BuildSearchQuery("SearchFolderInfo", "szFolderName", text);
  return AppendFirst(*m_db, folders, max, kSearchFolderColumns, "%s", Raw(query));
}

struct vdstomgr::SearchAccess {
  static DatabaseSession& DatabaseOf(CRkSearchDBManager& search) { return *search.m_db; }
};

int vdstomgr::SearchFileNameByInitials(CRkSearchDBManager& search, const char* text,
                                       PhotoArray& photos, int max) {
  const CString query = BuildInitialsQuery("SearchPhotoMaster", "szFileName", text);
  return AppendFirst(SearchAccess::DatabaseOf(search), photos, max, kSearchPhotoColumns, "%s",
                     Raw(query));
}

int vdstomgr::SearchFolderNameByInitials(CRkSearchDBManager& search, const char* text,
                                         FolderArray& folders, int max) {
  const CString query = BuildInitialsQuery("SearchFolderInfo", "szFolderName", text);
  return AppendFirst(SearchAccess::DatabaseOf(search), folders, max, kSearchFolderColumns, "%s",
                     Raw(query));
}

bool CRkSearchDBManager::cGetPhotoInfoByRS(CRkDaoRecordset& rs, PHOTOINFO& photo) {
  if (rs.IsEOF()) return false;
  photo = kSearchPhotoColumns.ReadFresh(rs);
  return true;
}
