#include "vdstomgr/transfer/sync_upload_list.h"

#include "vdstomgr/transfer/upload_queue.h"

namespace vdstomgr::transfer {

namespace {

PlaceCounter g_places(0);

}  // namespace

bool SyncUploadList::AddSyncUploadList(SYNCUPLOADLIST& rec) {
  m_db->Guarded([&] { AddRow(*m_db, rec, g_places, m_nSmallFileUploadMaxSize); });
  return false;  // on purpose
}

bool SyncUploadList::SetSyncUploadList(const SYNCUPLOADLIST& rec) {
  return m_db->Guarded(false, [&] { return EditRow(*m_db, rec, m_nSmallFileUploadMaxSize); });
}

bool SyncUploadList::GetSyncUploadInfo(const char* guid, SYNCUPLOADLIST& out) {
  return m_db->Guarded(false,
                       [&] { return ReadFirst(SelectByGuid<SYNCUPLOADLIST>(*m_db, guid), out); });
}

bool SyncUploadList::GetNextSyncUploadList(SYNCUPLOADLIST& out) {
  return m_db->Guarded(false, [&] {
    return ClaimFirst(*m_db, out,
                      "SELECT * FROM SyncUploadList WHERE nStatus = %d ORDER BY nDispOrder ASC",
                      kReady);
  });
}

int SyncUploadList::GetSyncUploadListCount() {
  return m_db->AskInteger(0, "SELECT COUNT(*) as Count FROM SyncUploadList");
}

bool SyncUploadList::ResetSyncUploadInfoStats(std::uint64_t& totalBytes, int& totalCount,
                                              std::uint64_t& doneBytes, int& doneCount,
                                              std::uint64_t& errorBytes, int& errorCount) {
  return m_db->Guarded(false, [&] {
    ReadStats<SYNCUPLOADLIST>(*m_db).Tell(totalBytes, totalCount, doneBytes, doneCount, errorBytes,
                                          errorCount);
    return true;
  });
}

int SyncUploadList::UpdateGUIDInSyncUploadInfo(int id, const char* newGuid) {
  return m_db->Guarded(0, [&] { return ChangeGuid<SYNCUPLOADLIST>(*m_db, id, newGuid); });
}

int SyncUploadList::UpdateGUIDInSyncUploadInfo(const char* oldGuid, const char* newGuid) {
  return m_db->Guarded(0, [&] { return ChangeGuid<SYNCUPLOADLIST>(*m_db, oldGuid, newGuid); });
}

bool SyncUploadList::DelSyncUploadListAll() {
  return m_db->ExecuteOrFail("DELETE FROM SyncUploadList");
}

}  // namespace vdstomgr::transfer
