#include "vdstomgr/catalogue/photos.h"

#include "vdstomgr/platform/report/report.h"
#include "vdstomgr/platform/utility/utility_lib.h"
#include "vdstomgr/session/database_session.h"
#include "vdstomgr/tables/photo_columns.h"

namespace vdstomgr::catalogue {

namespace {

constexpr int kMaxCandidates = 10'000;

constexpr ColumnMap kCountColumns(std::array{
    Number<&COUNTINFOLDER::dwFolderID>("dwFolderID"),
    Number<&COUNTINFOLDER::Count>("Count"),
});

bool HasPhoto(DatabaseSession& db, DWORD folder, const char* file_name) {
  return FirstInteger(db.Select("SELECT COUNT(*) as nCount FROM PhotoMaster "
                                "WHERE dwFolderID = %d AND szFileName = '%s'",
                                folder, file_name)) > 0;
}

}  // namespace

bool Photos::AddPhotoInfo(const PHOTOINFO& info, bool bUpdateIfExists) {
  return m_db->WriteRecord(info, kPhotoColumns, bUpdateIfExists ? Write::AddOrEdit : Write::AddOnly,
                           "SELECT * FROM PhotoMaster WHERE szGUID = '%s'", Raw(info.szGUID));
}

bool Photos::AddPhotoInfo(const PhotoArray& list) {
  Trace("CRkPhotoDBManager::AddPhotoInfo");
  return m_db->AddRecords(list, kPhotoColumns, "SELECT * FROM PhotoMaster");
}

bool Photos::SetPhotoInfo(const PHOTOINFO& info, bool bAddIfMissing) {
  return m_db->WriteRecord(info, kPhotoColumns, bAddIfMissing ? Write::AddOrEdit : Write::EditOnly,
                           "SELECT * FROM PhotoMaster WHERE szGUID = '%s'", Raw(info.szGUID));
}

bool Photos::GetPhotoInfo(const char* guid, PHOTOINFO& info) {
  return m_db->AskRecord(info, kPhotoColumns, "SELECT * FROM PhotoMaster WHERE szGUID = '%s'",
                         Raw(guid));
}

int Photos::GetPhotoInfo(const CStringArray& guids, PhotoArray& out, CRkCallback progress) {
  return m_db->AskEachRecord(guids, out, kPhotoColumns, progress,
                             "SELECT * FROM PhotoMaster WHERE szGUID = '%s'");
}

bool Photos::cGetPhotoInfoByRS(CRkDaoRecordset& rs, PHOTOINFO& info) {
  if (rs.IsEOF()) return false;
  kPhotoColumns.Read(rs, info);
  return true;
}

CString Photos::GetPhotoName(const char* guid) {
  return m_db->Guarded(CString(), [&] {
    Rows rows = m_db->Select("SELECT * FROM PhotoMaster WHERE szGUID = '%s'", Raw(guid));
    return rows.HasRow() ? rows->Text("szFileName") : CString();
  });
}

DWORD Photos::GetFolderID(const char* guid) {
  return m_db->AskId("SELECT dwFolderID FROM PhotoMaster WHERE szGUID = '%s'", Raw(guid));
}

bool Photos::IsPhoto(DWORD folder, const char* file_name) {
  return m_db->Guarded(false, [&] { return HasPhoto(*m_db, folder, file_name); });
}

int Photos::GetPhotoCount() {
  return m_db->AskInteger(0, "SELECT COUNT(*) as nCount FROM PhotoMaster");
}

CString Photos::GetPhotoGUID(DWORD folder, const char* file_name) {
  return m_db->AskText("SELECT szGUID FROM PhotoMaster WHERE dwFolderID = %d AND szFileName = '%s'",
                       folder, file_name);
}

int Photos::GetPhotoGUID(DWORD folder, const char* file_name, CStringArray& out) {
  return m_db->AskList(out,
                       "SELECT szGUID FROM PhotoMaster WHERE dwFolderID = %d AND szFileName = '%s'",
                       folder, file_name);
}

int Photos::GetPhotoInFolder(DWORD folder, CStringArray& out) {
  return m_db->AskList(out, "SELECT szGUID FROM PhotoMaster WHERE dwFolderID = %d", folder);
}

int Photos::GetPhotoInFolder(DWORD folder, PhotoArray& out) {
  return m_db->AskRecords(out, kPhotoColumns,
                          "SELECT * FROM PhotoMaster WHERE dwFolderID = %d ORDER BY szFileName",
                          folder);
}

int Photos::GetPhotoCountInFolders(CountArray& out) {
  return m_db->AskRecords(out, kCountColumns,
                          "SELECT dwFolderID, COUNT(dwFolderID) as Count FROM PhotoMaster "
                          "GROUP BY dwFolderID");
}

int Photos::GetPhotoCountInFolders(const CDWordArray& folders, CountArray& out) {
  return m_db->Guarded(0, [&] {
    return m_db->AskRecords(out, kCountColumns,
                            "SELECT dwFolderID, COUNT(dwFolderID) as Count FROM PhotoMaster "
                            "WHERE dwFolderID IN (%s) GROUP BY dwFolderID",
                            IdList(folders));
  });
}

CString Photos::GetEditSaveFileName(const char* file_name, DWORD folder) {
  return m_db->Guarded(CString(), [&]() -> CString {
    CString candidate = file_name;
    for (int n = 0; n < kMaxCandidates; ++n) {
      candidate = CUtilityLib::GetCloneFileName(candidate);
      if (!HasPhoto(*m_db, folder, candidate)) return candidate;
    }
    return {};
  });
}

}  // namespace vdstomgr::catalogue
