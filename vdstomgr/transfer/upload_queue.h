#pragma once

#include <atomic>
#include <cstdint>
#include <tuple>

#include "vdstomgr/records/image_names.h"
#include "vdstomgr/session/database_session.h"
#include "vdstomgr/tables/upload_columns.h"

/// What both upload queues are made of. But for the counter these are steps of operations: they run
/// under the session's guard and throw.
namespace vdstomgr::transfer {

inline constexpr std::int32_t kReady = 0;
inline constexpr std::int32_t kInTransfer = 1;
inline constexpr std::int32_t kFinished = 2;
inline constexpr std::int32_t kFinishedToo = 3;  // treated as kFinished everywhere
inline constexpr std::int32_t kThumbnailMissing = 0;
inline constexpr std::int32_t kThumbnailMade = 1;

constexpr bool IsFinished(std::int32_t status) {
  return status == kFinished || status == kFinishedToo;
}

inline bool IsSmallFile(const char* name, std::uint64_t bytes, std::uint64_t limit) {
  return bytes < limit && !IsPngFileName(name);
}

/// The places that this process gives to new rows of a queue, whichever object adds them. For any
/// thread; counts round at the end of 32 bits.
class PlaceCounter {
 public:
  explicit constexpr PlaceCounter(std::int32_t last) : last_(static_cast<DWORD>(last)) {}

  bool IsAt(std::int32_t place) const { return last_ == static_cast<DWORD>(place); }
  /// Unless another thread was faster.
  void MoveOn(std::int32_t from, std::int32_t to) {
    auto expected = static_cast<DWORD>(from);
    last_.compare_exchange_strong(expected, static_cast<DWORD>(to));
  }
  std::int32_t Next() { return static_cast<std::int32_t>(last_.fetch_add(1) + 1); }

 private:
  std::atomic<DWORD> last_;
};

/// A record as its row is written.
template <class Record>
QueueRow<Record> RowOf(const Record& record, std::uint64_t small_limit) {
  return {record, IsSmallFile(record.szFileName, record.dxFileSize, small_limit),
          IsImageFileName(record.szFileName)};
}

/// Adds a row at the next place and tells the record that.
template <class Record>
void AddRow(DatabaseSession& db, Record& record, PlaceCounter& places, std::uint64_t small_limit) {
  Rows rows = db.Select("SELECT * FROM %s", Raw(QueueTable<Record>::kName));
  QueueRow<Record> row = RowOf(record, small_limit);
  row.nDispOrder = places.Next();
  QueueTable<Record>::kAll.Add(rows->Recordset(), row);
  record.nDispOrder = row.nDispOrder;
}

/// The first row of a query; false, and the record as it was, without one.
template <class Record>
bool ReadFirst(Rows rows, Record& record) {
  if (!rows.HasRow()) return false;
  record = QueueTable<Record>::kAll.ReadFresh(rows->Recordset());
  return true;
}

template <class Record>
Rows SelectByGuid(DatabaseSession& db, const char* guid) {
  return db.Select("SELECT * FROM %s WHERE szGUID = '%s'", Raw(QueueTable<Record>::kName),
                   Raw(guid));
}

/// Rewrites the row of the record's GUID; false when there is none.
template <class Record>
bool EditRow(DatabaseSession& db, const Record& record, std::uint64_t small_limit) {
  return QueueTable<Record>::kFile.WriteRow(SelectByGuid<Record>(db, record.szGUID)->Recordset(),
                                            RowOf(record, small_limit), Write::EditOnly);
}

template <class Record>
bool SetStatus(DatabaseSession& db, const char* guid, std::int32_t status) {
  return db.RunOrThrow("UPDATE %s SET nStatus = %d WHERE szGUID = '%s'",
                       Raw(QueueTable<Record>::kName), status, Raw(guid)) != 0;
}

/// Takes the first row of a query, which is in transfer then. The query is closed before the row
/// changes.
template <class Record, class... Arguments>
bool ClaimFirst(DatabaseSession& db, Record& record, SqlFormatOf<Arguments...> query,
                const Arguments&... arguments) {
  if (!ReadFirst(db.Select<Arguments...>(query, arguments...), record)) return false;
  return SetStatus<Record>(db, record.szGUID, kInTransfer);
}

/// Did a row get the other GUID?
template <class Record>
bool ChangeGuid(DatabaseSession& db, std::int32_t id, const char* guid) {
  return db.RunOrThrow("UPDATE %s SET szGUID = '%s' WHERE nID = %d", Raw(QueueTable<Record>::kName),
                       Raw(guid), id) != 0;
}
template <class Record>
bool ChangeGuid(DatabaseSession& db, const char* old_guid, const char* guid) {
  return db.RunOrThrow("UPDATE %s SET szGUID = '%s' WHERE szGUID = '%s'",
                       Raw(QueueTable<Record>::kName), Raw(guid), Raw(old_guid)) != 0;
}

/// Bytes and rows, and of whom.
struct UploadStats {
  struct Sum {
    std::uint64_t bytes = 0;
    int count = 0;

    void Add(std::uint64_t size) {
      bytes += size;
      ++count;
    }
  };

  Sum total, done, failed;

  void Add(std::uint64_t size, std::uint64_t sent, std::int32_t status) {
    total.Add(size);
    if (IsFinished(status)) done.Add(size);
    if (status == kInTransfer) done.bytes += sent;
    if (status < 0) failed.Add(size);
  }
  void Tell(std::uint64_t& total_bytes, int& total_count, std::uint64_t& done_bytes,
            int& done_count, std::uint64_t& error_bytes, int& error_count) const {
    std::tie(total_bytes, total_count) = std::tie(total.bytes, total.count);
    std::tie(done_bytes, done_count) = std::tie(done.bytes, done.count);
    std::tie(error_bytes, error_count) = std::tie(failed.bytes, failed.count);
  }
};

template <class Record>
UploadStats ReadStats(DatabaseSession& db) {
  UploadStats stats;
  for (Row& row : db.Select("SELECT dxFileSize, dxSentBytes, nStatus FROM %s ORDER BY nID",
                            Raw(QueueTable<Record>::kName)))
    stats.Add(SizeFromText(row.Text("dxFileSize")), SizeFromText(row.Text("dxSentBytes")),
              row.Integer("nStatus"));
  return stats;
}

}  // namespace vdstomgr::transfer
