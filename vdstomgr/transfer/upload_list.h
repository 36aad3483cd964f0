#pragma once

#include <atomic>
#include <cstdint>

#include "vdstomgr/platform/framework/map.h"
#include "vdstomgr/records/upload_list.h"
#include "vdstomgr/session/database_owner.h"
#include "vdstomgr/session/stale_at_exit.h"

namespace vdstomgr::transfer {

/// The queue of the files that the user wants to have uploaded. It has an order that the user sees
/// and changes; a position counts from 0 in that order. A row is ready (status 0), in transfer (1),
/// finished (2 or 3), or failed with a negative error code, of which -7212, -500, -7103, -7104,
/// -7105, -7106, -7107 and -7108 are worth another attempt. All operations let a failing statement
/// end them.
class VDSTO_API UploadList : public DatabaseOwner {
 public:
  /// ---- Adding and changing ----

  /// A file of fewer bytes counts as small, unless it is a PNG file; 1,048,576 at first. Counts for
  /// rows written later. Takes no lock.
  void SetSmallFileUploadMaxSize(std::uint64_t bytes) { m_nSmallFileUploadMaxSize = bytes; }
  /// Adds a row at the end of the queue and tells the record its place. Always false, also when the
  /// row was added.
  bool AddUploadList(UPLOADLIST& rec);
  /// Adds all, each as AddUploadList does, and leaves the records as they are. Always 0.
  int AddUploadList(const UploadListArray& recs);
  /// Rewrites the row of the record's GUID but for its place. False when there is none.
  bool SetUploadList(const UPLOADLIST& rec);
  /// False when there is no such row.
  bool SetUploadListStatus(const char* guid, int status);
  bool SetUploadListStatus(const char* guid, int status, int thumbStatus);
  /// How much of a file was sent; 0 when there is no such row, else 1.
  int UpdateSentBytesInUploadInfo(const char* guid, std::uint64_t sent);
  /// Gives a row the GUID that its photo has by now; 0 when there is no such row, else 1.
  int UpdateGUIDInUploadInfo(int id, const char* newGuid);
  int UpdateGUIDInUploadInfo(const char* oldGuid, const char* newGuid);

  /// ---- Taking work: the first row of its kind, marked as taken. False when there is none. ----

  /// A ready row, which is in transfer then.
  bool GetNextUploadList(UPLOADLIST& out);
  /// The same of those whose thumbnail is not made.
  bool GetNextUploadListWithThumbNotTrans(UPLOADLIST& out);
  /// The same of the small files; below level 4 with a flag, of those that are no images.
  bool GetNextUploadListForSmallUpload(UPLOADLIST& out, DWORD level, int flag);
  /// A ready, small file without a thumbnail. Its thumbnail counts as made then, itself stays
  /// ready.
  bool GetNextUploadListForCreateLTB(UPLOADLIST& out);

  /// ---- Counting ----

  /// -1 on failure.
  int GetUploadListCount();
  int GetUploadReadyCount();
  int GetUploadErrorCount();
  /// Of the failures that are worth another attempt.
  int GetUploadRetriableErrorCount();
  /// The same with the sum of their sizes.
  bool GetUploadRetriableErrorInfo(int& count, std::uint64_t& bytes);
  /// Bytes and rows in all, done and failed. What is in transfer counts with the bytes sent.
  bool ResetUploadInfoStats(std::uint64_t& totalBytes, int& totalCount, std::uint64_t& doneBytes,
                            int& doneCount, std::uint64_t& errorBytes, int& errorCount);
  /// Is every row finished? True for an empty queue.
  bool IsUploadPerfectCompleted();

  /// ---- Reading ----

  /// False, and the record as it was, when there is no such row.
  bool GetUploadInfo(const char* guid, UPLOADLIST& out);
  /// The row at a position, read with its neighbours and kept until the queue changes through this
  /// object. The record stays as it was when there is none. Always 1.
  int GetUploadInfoByIndex(UPLOADLIST& out, int index);
  /// Appends up to `count` rows from position `start` on; answers how many.
  int cGetUploadListByIndex(UploadListArray& out, int count, int start);
  /// Sorts the positions and appends their rows, each once and without what concerns thumbnails;
  /// answers how many.
  int GetUploadListByArray(UploadListArray& out, CDWordArray& positions);
  /// The greatest place of all rows; 0 in an empty queue.
  int GetUploadListMaxDispOrder();
  /// The position of the first ready row; the number of rows when none is ready.
  int cGetNextUploadListIndex();
  /// 0, and `sent` as it was, when there is no such row.
  int GetSentBytesInUploadInfo(const char* guid, std::uint64_t* sent);
  /// Fails unless the list is empty: the queue knows no folders.
  int GetUploadFolderForGUID(const CStringArray& guids, CDWordArray& folders);

  /// ---- Resetting and deleting; true also when nothing is changed ----

  /// What was in transfer is ready again; both do the same.
  void Login_InitUploadList();
  void ResetUploadTransStatus();
  /// What failed or was in transfer is ready again.
  bool RetryUploadListErrored();
  /// Failures that are worth another attempt are ready again.
  bool RetryUploadListErroredOfIndexed();
  bool DelUploadList(const char* guid);
  bool DelUploadList(const CStringArray& guids);
  /// Fail unless the list is empty: the queue knows no folders.
  bool DelUploadList(const CDWordArray& folderIDs);
  bool DelUploadList(DWORD folderID);
  /// Deletes what is finished.
  bool DelUploadListCompleted();
  /// Delete every row.
  bool DelUploadListAll();
  bool ResetUploadList();

  /// ---- Reordering. The selection is of positions, in ascending order. Entries before the first
  /// ready row, which never move, are taken out of it. Answers the new position of the first row
  /// that moved; -1 when nothing is left to move, 0 on failure. ----

  /// To the first ready position.
  int SetUploadReorder_TOP(CDWordArray& sel);
  /// Together, to one place before the first of them.
  int SetUploadReorder_UP(CDWordArray& sel);
  /// Together, to one place behind the last of them.
  int SetUploadReorder_DOWN(CDWordArray& sel);
  /// To the end.
  int SetUploadReorder_BOTTOM(CDWordArray& sel);
  /// Numbers the places from position `from` to `to` anew, the selected rows together at the front
  /// or the back of the others; takes out of `sel` those it came by.
  bool cRangedSelectionSorting(int from, int to, bool toFront, CDWordArray& sel);

 protected:
  UploadList();
  ~UploadList() override;

  /// To be held over every change of the queue: what was read by position is stale at its end.
  StaleAtExit Changing();
  void cForgetFile() override { m_bPositionsStale = true; }
  std::atomic<std::uint64_t> m_nSmallFileUploadMaxSize{1'048'576};

 private:
  struct Selection;
  struct Reordering;

  int Reorder(CDWordArray& sel, Reordering (*plan)(const Selection&));
  void KeepPageAround(int index);

  CMap<int, int, UPLOADLIST, UPLOADLIST&> m_mapUploadList;  // by position
  bool m_bPositionsStale = false;                           // of the map; both under the lock
};

}  // namespace vdstomgr::transfer
