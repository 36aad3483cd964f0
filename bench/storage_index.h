#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "vdstomgr/storage/array_file.h"
#include "vdstomgr/storage/array_index.h"

namespace bench {

/// One unit of the array: a key of each kind at its own place.
struct IndexedUnit {
  static constexpr int kTextLength = 44;
  static constexpr int kBytesLength = 16;

  /// Below 2^31, so that the order by signed difference is an order and std::sort may be used.
  DWORD number;
  char text[kTextLength];  ///< upper-case, all of the length
  unsigned char bytes[kBytesLength];
};

/// An array file of units with random keys, which is deleted in the end.
class IndexedArray {
 public:
  IndexedArray(const std::filesystem::path& path, int units);
  ~IndexedArray();
  IndexedArray(const IndexedArray&) = delete;
  IndexedArray& operator=(const IndexedArray&) = delete;

  int Size() { return units_.GetSize(); }
  CRkFileArrayManager& Units() { return units_; }
  const IndexedUnit* Data() const { return static_cast<IndexedUnit*>(units_.GetArrayPtr()); }

 private:
  std::string path_;
  CRkFileArrayManager units_;
};

/// Registers building an index and finding in it, and the same by std::sort and std::lower_bound
/// over the same pointers, for each kind of key. The benchmarks must be cleared before the array
/// goes.
void RegisterIndexBenchmarks(IndexedArray& array);

}  // namespace bench
