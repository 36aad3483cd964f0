#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "vdstomgr/storage/verify_storage.h"

namespace vdstomgr {

struct RepairReport {
  bool repaired = false;           ///< whether there is a sound pair of files now
  bool was_sound = false;          ///< nothing was wrong, and nothing has been changed
  std::uint64_t good_records = 0;  ///< that the index names now
  std::string kept_index;          ///< the old index file's new name; empty when it is still in use
  /// Keys that a cluster or a damaged record had, and that have no record any more; numbers in
  /// decimal. The first StorageReport::kMostFindings.
  std::vector<std::string> lost_keys;
  std::uint64_t lost_count = 0;
  /// What was found: each bad place of the data file that is left out now, those of the index file
  /// if nothing was wrong with the data file, and, when nothing was repaired, why.
  StorageReport found;
  /// The data file cannot be mended: neither header nor index tells what its records are.
  /// SetStorageAside makes room for a new one.
  bool is_beyond_repair = false;
};

/// Makes a storage (path of the data file, in the process's code page) sound. A sound one is left
/// as it is. Otherwise it gets a new index file of its good records, in key order; equal keys are
/// all kept. What is no record, and records with a wrong checksum, become removed records: their
/// bytes stay until a compaction, the good ones where they are. A header is mended where the index
/// or the records tell what it should be. The old index file is kept as "<index>.old" or, when that
/// is taken, "<index>.old.2" and so on.
///
/// A compaction that was killed is finished first. Nobody may have the storage open. A process
/// killed in here leaves files that a second call repairs; of a disk that cannot be read in places
/// nothing is changed.
VDSTO_API RepairReport RepairStorage(const char* path);

/// Gives both files of a storage names that are free ("<file>.damaged", "<file>.damaged.2"...).
/// Answers the data file's new name; empty, and nothing has been renamed, when that failed.
VDSTO_API std::string SetStorageAside(const char* path);

}  // namespace vdstomgr
