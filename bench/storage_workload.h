#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "bench/storage_peers.h"

namespace bench {

/// From here on a workload counts as large, and one run of it is long enough to stand for itself.
constexpr int kManyRecords = 100'000;

enum class StorageClock {
  elapsed,   ///< what a user waits
  processor  ///< the time of all threads: for a machine that is busy with other work
};

struct Workload {
  int records;
  int blob_bytes;
  StorageClock clock;
};

struct Subject {
  std::string name;
  std::unique_ptr<BlobStore> (*open)(const std::filesystem::path& folder);
};

enum StorageOperation { kPut, kBulkPut, kFirstGet, kGet, kGetMissing, kRemove, kCompact };
constexpr std::size_t kStorageOperations = kCompact + 1;

/// What one run of a workload has shown of one subject.
struct StorageFigures {
  /// Microseconds for each record that the operation handled; compaction: for each live record.
  /// 0 when the subject has no such operation.
  std::array<double, kStorageOperations> us = {};
  /// How many records were put one by one before that pass ran out of time.
  int put_records = 0;
  /// Of all blobs, to see that each subject has read the same.
  std::uint64_t sum = 0;
  /// The process's memory at its highest, with the pages of mapped files, which the system can take
  /// back; and without them, after the reads.
  double peak_mib = 0;
  double private_mib = 0;
};

/// Runs a workload on a subject, in processes of its own and in `folder`, which is empty before and
/// after. Records have random keys and come in random order.
StorageFigures Measure(const Workload& workload, const Subject& subject,
                       const std::filesystem::path& folder);

}  // namespace bench
