#include "vdstomgr/catalogue/folder_attributes.h"

#include <atomic>
#include <tuple>

#include "vdstomgr/catalogue/folder_steps.h"
#include "vdstomgr/platform/utility/utility_lib.h"
#include "vdstomgr/session/stale_at_exit.h"

namespace vdstomgr::catalogue {

namespace {

constexpr char kSyncTime[] = "LastFolderDBSyncTime";
constexpr char kRefreshTime[] = "LastFolderDBRefreshTime";

constexpr ColumnMap kStoredCountColumns(std::array{
    Number<&FOLDERINFO::dwFolderID>("dwFolderID"),
    Number<&FOLDERINFO::nPhotoCount>("nPhotoCount"),
});

int CountPhotos(DatabaseSession& db, DWORD folder) {
  return FirstInteger(
      db.Select("SELECT COUNT(*) as Count FROM PhotoMaster WHERE dwFolderID = %d", folder));
}

Rows SelectSecureFolders(DatabaseSession& db) {
  return db.Select("SELECT dwFolderID, szFolderPassword FROM FolderInfo WHERE bSecureFolder = 1");
}

void TakeTimeUnlessUnknown(const char* text, std::int32_t& time) {
  if (const std::int32_t known = CUtilityLib::GetTime(text); known != -1) time = known;
}

/// What `count` answered when it was first asked in this process.
template <class Count>
int FirstAnswer(std::atomic<int>& kept, Count count) {
  if (int none = -1; kept == none) kept.compare_exchange_strong(none, count());
  return kept;
}

}  // namespace

bool FolderAttributes::SetFolderPassword(DWORD id, int secure, const char* password) {
  return m_db->ForOne(
      id, [&](const CDWordArray& one) { return SetFolderPassword(one, secure, password); });
}

bool FolderAttributes::SetFolderPassword(DWORD id, int secure, const char* password,
                                         const char* setter) {
  return m_db->ForOne(
      id, [&](const CDWordArray& one) { return SetFolderPassword(one, secure, password, setter); });
}

bool FolderAttributes::SetFolderPassword(const CDWordArray& ids, int secure, const char* password) {
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->ExecuteForEach(ids,
                              "UPDATE FolderInfo SET bSecureFolder = '%d', szFolderPassword = '%s' "
                              "WHERE dwFolderID = %d",
                              secure, Raw(password), kEachId);
}

bool FolderAttributes::SetFolderPassword(const CDWordArray& ids, int secure, const char* password,
                                         const char* setter) {
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->ExecuteForEach(
      ids,
      "UPDATE FolderInfo SET bSecureFolder = '%d', szFolderPassword = '%s', "
      "szSecureFolderSetter = '%s' WHERE dwFolderID = %d",
      secure, Raw(password), Raw(setter), kEachId);
}

bool FolderAttributes::SetSharedOption(DWORD id, int shared) {
  return m_db->ForOne(id, [&](const CDWordArray& one) { return SetSharedOption(one, shared); });
}

bool FolderAttributes::SetSharedOption(const CDWordArray& ids, int shared) {
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->ExecuteForEach(ids, "UPDATE FolderInfo SET bSharedOption = %d WHERE dwFolderID = %d",
                              shared, kEachId);
}

bool FolderAttributes::SetFolderUpDownType(DWORD id, int type, int allow_preview,
                                           int to_sub_folders, int allow_comment) {
  return m_db->Guarded(false, [&] {
    FOLDERINFO folder;
    if (id == kNoFolder || !FoldersOf(*m_db).Find(id, folder)) return false;
    if (std::tie(folder.nFolderUpDownType, folder.bAllowPreviewImage, folder.bAllowComment) !=
        std::tie(type, allow_preview, allow_comment)) {
      const StaleAtExit change(m_csDAO, m_bFolderChanged);
      m_db->Run(
          "UPDATE FolderInfo SET nFolderUpDownType = %d, bAllowPreviewImage = %d, "
          "bAllowComment = %d WHERE dwFolderID = %d",
          type, allow_preview, allow_comment, id);
    }
    CDWordArray below;
    if (to_sub_folders != 0) GetSubFolder(id, below, true);
    for (const DWORD sub_folder : below)
      SetFolderUpDownType(sub_folder, type, allow_preview, 0, allow_comment);
    return true;
  });
}

bool FolderAttributes::SetCreatorSubIDInfo(DWORD id, const char* creator, int type) {
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->Execute(
      "UPDATE FolderInfo SET szCreatorSubID = '%s', nCreatorSubIDType = %d WHERE dwFolderID = %d",
      Raw(creator), type, id);
}

int FolderAttributes::GetAllSharedFolder(CDWordArray& ids) {
  return m_db->AskList(ids, "SELECT dwFolderID FROM FolderInfo WHERE bSharedOption = 1");
}

int FolderAttributes::GetAllSharedFolderCount() {
  return m_db->AskInteger(0, "SELECT Count(*) as Count FROM FolderInfo WHERE bSharedOption = 1");
}

int FolderAttributes::GetAllSecureFolder(CDWordArray& ids) {
  return m_db->AskList(ids, "SELECT dwFolderID FROM FolderInfo WHERE bSecureFolder = 1");
}

int FolderAttributes::GetAllSecureFolderCount() {
  return m_db->AskInteger(0, "SELECT Count(*) as Count FROM FolderInfo WHERE bSecureFolder = 1");
}

int FolderAttributes::GetAllLimitedUpDownFolder(CDWordArray& ids) {
  return m_db->AskList(ids, "SELECT dwFolderID FROM FolderInfo WHERE nFolderUpDownType <> 3");
}

int FolderAttributes::GetAllLimitedUpDownFolderCount() {
  return m_db->AskInteger(0,
                          "SELECT Count(*) as Count FROM FolderInfo WHERE nFolderUpDownType <> 3");
}

int FolderAttributes::GetAllUpOnlyFolder(CDWordArray& ids) {
  return m_db->AskList(ids, "SELECT dwFolderID FROM FolderInfo WHERE nFolderUpDownType = 2");
}

int FolderAttributes::GetAllUpOnlyFolderCount() {
  return m_db->AskInteger(0,
                          "SELECT Count(*) as Count FROM FolderInfo WHERE nFolderUpDownType = 2");
}

int FolderAttributes::GetSecureFolderList(CDWordArray& ids, CStringArray* passwords) {
  return m_db->Guarded(0, [&] {
    for (Row& row : SelectSecureFolders(*m_db)) {
      ids.Add(row.Id());
      if (passwords != nullptr) passwords->Add(row.Text("szFolderPassword"));
    }
    return ids.GetSize();
  });
}

int FolderAttributes::GetAllSecureFolderLocked(CDWordArray& ids) {
  return m_db->Guarded(0, [&] {
    for (Row& row : SelectSecureFolders(*m_db))
      if (row.Text("szFolderPassword").IsEmpty()) ids.Add(row.Id());
    return ids.GetSize();
  });
}

int FolderAttributes::GetAllLockedFile(CStringArray& guids) {
  return m_db->AskList(guids, "SELECT szGUID FROM PhotoMaster WHERE byteLockStatus = 1");
}

int FolderAttributes::SubFolderCountIsLargeForCheckFolderAuthorityEdit(DWORD id, bool recursive) {
  static std::atomic<int> first_limit = -1;
  return m_db->Guarded(0, [&] {
    const int limit = FirstAnswer(first_limit, [&] {
      return GetAllLimitedUpDownFolderCount() + GetAllSecureFolderCount() +
             GetAllSharedFolderCount();
    });
    int count = 0;
    return SubFolderCountIsLarge(id, count, limit, recursive);
  });
}

int FolderAttributes::SubFolderCountIsLargeForCheckFolderAuthorityDownload(DWORD id,
                                                                           bool recursive) {
  static std::atomic<int> first_limit = -1;
  return m_db->Guarded(0, [&] {
    const int limit = FirstAnswer(first_limit, [&] {
      return GetAllUpOnlyFolderCount() + GetAllSecureFolderCount() + GetAllSharedFolderCount();
    });
    int count = 0;
    return SubFolderCountIsLarge(id, count, limit, recursive);
  });
}

bool FolderAttributes::ResetFolderCache() {
  return m_db->Execute("UPDATE FolderInfo SET byteCache = 0");
}

bool FolderAttributes::SetFolderCache(DWORD id, bool cached) {
  return m_db->Execute("UPDATE FolderInfo SET byteCache = %d WHERE dwFolderID = %d", cached, id);
}

bool FolderAttributes::GetFolderCache(DWORD id) {
  return m_db->AskInteger(0, "SELECT byteCache FROM FolderInfo WHERE dwFolderID = %d", id) != 0;
}

int FolderAttributes::GetPhotoCountAtFolder(DWORD id) {
  return m_db->Guarded(0, [&] { return CountPhotos(*m_db, id); });
}

int FolderAttributes::UpdatePhotoCountAtFolder(DWORD id) {
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->Guarded(0, [&] {
    const int count = CountPhotos(*m_db, id);
    m_db->Run("UPDATE FolderInfo SET nPhotoCount = %d WHERE dwFolderID = %d", count, id);
    return count;
  });
}

int FolderAttributes::GetRealPhotoCountAtFolder(DWORD id) {
  return m_db->AskInteger(
      0, "SELECT Count(*) as Count FROM PhotoMaster WHERE dwFolderID = %d AND szLTBURL <> ''", id);
}

int FolderAttributes::GetAllFolderListForPhotoCount(FolderArray& folders) {
  return m_db->AskRecords(folders, kStoredCountColumns, "SELECT * FROM FolderInfo");
}

int FolderAttributes::SetLastFolderDBSyncTime(std::int32_t time) {
  m_db->Guarded([&] { SetVersionInfo(kSyncTime, CUtilityLib::GetTime(time)); });
  return 1;
}

int FolderAttributes::GetLastFolderDBSyncTime(std::int32_t& time) {
  TakeTimeUnlessUnknown(GetVersionInfo(kSyncTime), time);
  return 1;
}

int FolderAttributes::SetLastFolderDBRefreshTime(std::int32_t time) {
  m_db->Guarded([&] { SetVersionInfo(kRefreshTime, CUtilityLib::GetTime(time)); });
  return 1;
}

int FolderAttributes::GetLastFolderDBRefreshTime(std::int32_t& time) {
  TakeTimeUnlessUnknown(GetVersionInfo(kRefreshTime), time);
  return 1;
}

int FolderAttributes::GetFolderListForNewFileList(FolderArray& folders, std::int32_t time) {
  m_db->Guarded([&] {
    FoldersOf(*m_db).Append(m_db->Select("SELECT * FROM FolderInfo WHERE szIModifiedDate >= '%s' "
                                         "order by szIModifiedDate desc",
                                         DateText{time}),
                            folders);
  });
  return folders.GetSize();
}

}  // namespace vdstomgr::catalogue
