#pragma once

#include <cstdint>
#include <string>

#include "vdstomgr/storage/verify_storage.h"

namespace vdstomgr {

struct RepairReport {
  bool repaired = false;           ///< whether there is a sound pair of files now
  std::uint64_t good_records = 0;  ///< that the new index names
  std::string kept_index;          ///< the old index file's new name; empty when there was none
  /// What was found in the data file: each bad place that the new index leaves out; and, when
  /// nothing was repaired, why.
  StorageReport found;
};

/// Makes a new index file from the live records of the data file (path in the process's code page),
/// in key order; equal keys are all kept. What is no record, a record that is not all there, and
/// one with a wrong checksum are left out and named; their bytes stay in the data file. A data
/// length beyond the end of the file is cut back to it. The old index file is kept as
/// "<index>.old" or, when that is taken, "<index>.old.2" and so on.
///
/// When a compaction was killed while it renamed, the pair of files is put back together first.
/// Nobody may have the storage open. A process killed in here leaves files that a second call
/// repairs.
VDSTO_API RepairReport RepairStorage(const char* path);

}  // namespace vdstomgr
