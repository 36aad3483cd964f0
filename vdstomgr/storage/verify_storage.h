#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "vdstomgr/platform/export.h"

namespace vdstomgr {

/// What can be wrong with the two files of a record storage.
enum class StorageFault {
  DataFileUnreadable,   ///< missing, or the system refuses to read it
  DataHeaderShort,      ///< the data file ends inside its header
  DataSignature,        ///< the data file does not begin as one
  DataVersion,          ///< a data file of a version that nobody has written yet
  DataKeyKind,          ///< keys of an unknown kind
  DataLength,           ///< the header counts bytes that the file does not have
  RecordTailShort,      ///< the last record is not all there: it was being written
  RecordDamaged,        ///< bytes that are no record: wrong mark, state or length
  RecordChecksum,       ///< a live record whose data has another checksum than it says
  IndexFileUnreadable,  ///< missing, or the system refuses to read it
  IndexHeader,          ///< no array file, of another storage, or of other key length
  IndexLength,          ///< the header counts clusters that the file does not have
  ClusterFree,          ///< a cluster that was being moved; the next load drops it
  ClusterDouble,        ///< a second cluster for one record; the next load drops a whole copy
  ClusterOrder,         ///< clusters not in key order; the next load sorts them
  ClusterOutside,       ///< a cluster for bytes that the data file does not have
  ClusterOverlap,       ///< a cluster for part of another one's record
  ClusterMismatch,      ///< no record begins there, or it has another key, length or checksum
  ClusterOfRemoved,     ///< the record is a removed one
  RecordWithoutCluster  ///< a live record that nobody can find: its adding was cut off
};

/// The name of a fault for programs: its words in lower case, joined by underscores.
VDSTO_API const char* NameOf(StorageFault fault);

/// Whether the next load mends it by itself.
VDSTO_API bool IsMendedByLoad(StorageFault fault);

struct StorageFinding {
  StorageFault fault{};
  /// In the data file for faults of records, in the index file for faults of clusters: bytes from
  /// the start of the file.
  std::uint64_t offset = 0;
  std::string text;  ///< for people, in English; with offset, length and key where known
};

struct StorageReport {
  static constexpr std::size_t kMostFindings = 1000;

  std::uint64_t live_records = 0;  ///< whole ones, with the right checksum
  std::uint64_t removed_records = 0;
  std::uint64_t damaged_records = 0;  ///< live ones with a wrong checksum, and runs of other bytes
  std::uint64_t clusters = 0;
  std::uint64_t data_bytes = 0;          ///< of records after the header
  std::uint64_t live_bytes = 0;          ///< of them, in live records
  std::uint64_t finding_count = 0;       ///< of all findings, also those left out of the list
  std::vector<StorageFinding> findings;  ///< the first kMostFindings

  /// Whether nothing was found but what the next load mends.
  bool is_sound = true;
};

/// Walks data file and index file (path of the data file, in the process's code page) and checks
/// marks, lengths, checksums, order, overlaps and that the two agree. Changes nothing and asks for
/// no lock: a storage that is in use may be reported with its latest change half-way. While a
/// compaction renames the files, or after it was killed there, they are looked at where they are.
/// `visit` is told the key of every live record with the right checksum, a number in decimal.
VDSTO_API StorageReport
VerifyStorage(const char* path, const std::function<void(const std::string& key)>& visit = {});

}  // namespace vdstomgr
