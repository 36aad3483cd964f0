#include "vdstomgr/transfer/upload_list.h"

#include "vdstomgr/transfer/upload_queue.h"

namespace vdstomgr::transfer {

namespace {

/// Error codes that another attempt may clear, for an IN list.
constexpr const char* kRetriable = "-7212, -500, -7103, -7104, -7105, -7106, -7107, -7108";

/// Nothing was added in this process yet. The first row then gets the greatest place and 2, every
/// later one 1 more; rows that are loaded or deleted do not count.
constexpr std::int32_t kNothingAdded = -1;
PlaceCounter g_places(kNothingAdded);

std::int32_t MaxPlace(DatabaseSession& db) {
  return FirstInteger(db.Select("SELECT MAX(nDispOrder) as MaxDispOrder FROM UploadList"), 1);
}

std::int32_t PlaceAfter(std::int32_t place) {
  return static_cast<std::int32_t>(static_cast<DWORD>(place) + 1);
}

}  // namespace

UploadList::UploadList() = default;
UploadList::~UploadList() = default;

StaleAtExit UploadList::Changing() {
  return {m_db->Lock(), m_bPositionsStale};
}

bool UploadList::AddUploadList(UPLOADLIST& rec) {
  const StaleAtExit change = Changing();
  m_db->Guarded([&] {
    if (g_places.IsAt(kNothingAdded)) g_places.MoveOn(kNothingAdded, PlaceAfter(MaxPlace(*m_db)));
    AddRow(*m_db, rec, g_places, m_nSmallFileUploadMaxSize);
  });
  return false;  // on purpose
}

int UploadList::AddUploadList(const UploadListArray& recs) {
  m_db->ForEach(recs, [&](UPLOADLIST rec) { AddUploadList(rec); });
  return 0;  // how many were answered true, on purpose
}

bool UploadList::SetUploadList(const UPLOADLIST& rec) {
  const StaleAtExit change = Changing();
  return m_db->Guarded(false, [&] { return EditRow(*m_db, rec, m_nSmallFileUploadMaxSize); });
}

bool UploadList::SetUploadListStatus(const char* guid, int status) {
  const StaleAtExit change = Changing();
  return m_db->Guarded(false, [&] { return SetStatus<UPLOADLIST>(*m_db, guid, status); });
}

bool UploadList::SetUploadListStatus(const char* guid, int status, int thumbStatus) {
  const StaleAtExit change = Changing();
  return m_db->ExecuteOnRowOrFail(
      "UPDATE UploadList SET nStatus = %d, nThumbStatus = %d WHERE szGUID = '%s'", status,
      thumbStatus, Raw(guid));
}

int UploadList::UpdateSentBytesInUploadInfo(const char* guid, std::uint64_t sent) {
  const StaleAtExit change = Changing();
  return m_db->Guarded(0, [&] {
    return m_db->RunOrThrow("UPDATE UploadList SET dxSentBytes = '%s' WHERE szGUID = '%s'",
                            CUtilityLib::GetString(sent), Raw(guid)) != 0;
  });
}

int UploadList::UpdateGUIDInUploadInfo(int id, const char* newGuid) {
  const StaleAtExit change = Changing();
  return m_db->Guarded(0, [&] { return ChangeGuid<UPLOADLIST>(*m_db, id, newGuid); });
}

int UploadList::UpdateGUIDInUploadInfo(const char* oldGuid, const char* newGuid) {
  const StaleAtExit change = Changing();
  return m_db->Guarded(0, [&] { return ChangeGuid<UPLOADLIST>(*m_db, oldGuid, newGuid); });
}

int UploadList::GetUploadListCount() {
  return m_db->AskInteger(-1, "SELECT COUNT(*) as Count FROM UploadList");
}

int UploadList::GetUploadReadyCount() {
  return m_db->AskInteger(-1, "SELECT COUNT(*) as Count FROM UploadList WHERE nStatus = %d",
                          kReady);
}

int UploadList::GetUploadErrorCount() {
  return m_db->AskInteger(-1, "SELECT COUNT(*) as Count FROM UploadList WHERE nStatus < 0");
}

int UploadList::GetUploadRetriableErrorCount() {
  return m_db->AskInteger(-1, "SELECT COUNT(*) as Count FROM UploadList WHERE nStatus IN (%s)",
                          Raw(kRetriable));
}

bool UploadList::GetUploadRetriableErrorInfo(int& count, std::uint64_t& bytes) {
  return m_db->Guarded(false, [&] {
    UploadStats::Sum sum;
    for (Row& row :
         m_db->Select("SELECT dxFileSize FROM UploadList WHERE nStatus IN (%s)", Raw(kRetriable)))
      sum.Add(SizeFromText(row.Text()));
    count = sum.count;
    bytes = sum.bytes;
    return true;
  });
}

bool UploadList::ResetUploadInfoStats(std::uint64_t& totalBytes, int& totalCount,
                                      std::uint64_t& doneBytes, int& doneCount,
                                      std::uint64_t& errorBytes, int& errorCount) {
  return m_db->Guarded(false, [&] {
    ReadStats<UPLOADLIST>(*m_db).Tell(totalBytes, totalCount, doneBytes, doneCount, errorBytes,
                                      errorCount);
    return true;
  });
}

bool UploadList::IsUploadPerfectCompleted() {
  return m_db->AskInteger(
             1, "SELECT COUNT(*) as nCount FROM UploadList WHERE nStatus <> %d and nStatus <> %d",
             kFinished, kFinishedToo) == 0;
}

bool UploadList::GetUploadInfo(const char* guid, UPLOADLIST& out) {
  return m_db->Guarded(false,
                       [&] { return ReadFirst(SelectByGuid<UPLOADLIST>(*m_db, guid), out); });
}

int UploadList::GetUploadListMaxDispOrder() {
  return m_db->Guarded(0, [&] { return MaxPlace(*m_db); });
}

int UploadList::GetSentBytesInUploadInfo(const char* guid, std::uint64_t* sent) {
  return m_db->Guarded(0, [&] {
    Rows rows = m_db->Select("SELECT dxSentBytes FROM UploadList WHERE szGUID = '%s'", Raw(guid));
    if (!rows.HasRow()) return 0;
    if (sent != nullptr) *sent = SizeFromText(rows->Text());
    return 1;
  });
}

// The table has no such column, so that this fails, on purpose; and it lets go what was read by
// position like an operation that changes the table.
int UploadList::GetUploadFolderForGUID(const CStringArray& guids, CDWordArray& folders) {
  const StaleAtExit change = Changing();
  return m_db->Guarded(0, [&] {
    const int before = folders.GetSize();
    for (const CString& guid : guids) {
      Rows rows = m_db->Select("SELECT dwFolderID FROM UploadList WHERE szGUID = '%s'", Raw(guid));
      if (rows.HasRow()) folders.Add(rows->Id());
    }
    return folders.GetSize() - before;
  });
}

void UploadList::Login_InitUploadList() {
  const StaleAtExit change = Changing();
  m_db->ExecuteOrFail("UPDATE UploadList SET nStatus = 0 WHERE nStatus = 1");
}

void UploadList::ResetUploadTransStatus() {
  const StaleAtExit change = Changing();
  m_db->ExecuteOrFail("Update UploadList Set nStatus = 0 WHERE nStatus = 1");
}

bool UploadList::RetryUploadListErrored() {
  const StaleAtExit change = Changing();
  return m_db->ExecuteOrFail("UPDATE UploadList SET nStatus = 0 WHERE nStatus < 0 OR nStatus = %d",
                             kInTransfer);
}

bool UploadList::RetryUploadListErroredOfIndexed() {
  const StaleAtExit change = Changing();
  return m_db->ExecuteOrFail("UPDATE UploadList SET nStatus = 0 WHERE nStatus IN (%s)",
                             Raw(kRetriable));
}

bool UploadList::DelUploadList(const char* guid) {
  return m_db->ForOne(guid, [&](const CStringArray& one) { return DelUploadList(one); });
}

bool UploadList::DelUploadList(const CStringArray& guids) {
  const StaleAtExit change = Changing();
  return m_db->ForEach(guids, [&](const CString& guid) {
    m_db->RunOrThrow("DELETE FROM UploadList WHERE szGUID = '%s'", Raw(guid));
  });
}

// The table has no such column, so that this fails, on purpose.
bool UploadList::DelUploadList(const CDWordArray& folderIDs) {
  const StaleAtExit change = Changing();
  return m_db->ForEach(folderIDs, [&](DWORD folder) {
    m_db->RunOrThrow("DELETE FROM UploadList WHERE dwFolderID = %d", folder);
  });
}

bool UploadList::DelUploadList(DWORD folderID) {
  return m_db->ForOne(folderID, [&](const CDWordArray& one) { return DelUploadList(one); });
}

bool UploadList::DelUploadListCompleted() {
  const StaleAtExit change = Changing();
  return m_db->ExecuteOrFail("DELETE FROM UploadList WHERE nStatus = %d or nStatus = %d", kFinished,
                             kFinishedToo);
}

bool UploadList::DelUploadListAll() {
  const StaleAtExit change = Changing();
  return m_db->ExecuteOrFail("DELETE FROM UploadList");
}

bool UploadList::ResetUploadList() {
  return DelUploadListAll();
}

}  // namespace vdstomgr::transfer
