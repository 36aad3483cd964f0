#pragma once

#include "vdstomgr/records/sync_upload_list.h"
#include "vdstomgr/transfer/upload_tags.h"

namespace vdstomgr::transfer {

/// The queue of the files that the synchronisation of folders uploads, with the statuses of
/// UploadList. Places count from 1 in every process, whatever the queue holds from earlier ones.
class VDSTO_API SyncUploadList : public UploadTags {
 public:
  /// Adds a row and tells the record its place. Always false, also when the row was added.
  bool AddSyncUploadList(SYNCUPLOADLIST& rec);
  /// Rewrites the row of the record's GUID but for its place. False when there is none.
  bool SetSyncUploadList(const SYNCUPLOADLIST& rec);
  /// False, and the record as it was, when there is no such row.
  bool GetSyncUploadInfo(const char* guid, SYNCUPLOADLIST& out);
  /// Takes the first ready row, which is in transfer then. False when there is none.
  bool GetNextSyncUploadList(SYNCUPLOADLIST& out);
  /// 0 on failure.
  int GetSyncUploadListCount();
  /// Bytes and rows in all, done and failed. What is in transfer counts with the bytes sent.
  bool ResetSyncUploadInfoStats(std::uint64_t& totalBytes, int& totalCount,
                                std::uint64_t& doneBytes, int& doneCount, std::uint64_t& errorBytes,
                                int& errorCount);
  /// Gives a row the GUID that its photo has by now; 0 when there is no such row, else 1.
  int UpdateGUIDInSyncUploadInfo(int id, const char* newGuid);
  int UpdateGUIDInSyncUploadInfo(const char* oldGuid, const char* newGuid);
  /// Deletes every row.
  bool DelSyncUploadListAll();
};

}  // namespace vdstomgr::transfer
