#pragma once

#include <map>
#include <string>
#include <vector>

#include "bench/storage_workload.h"

namespace bench {

/// The figures of one workload: what each subject costs, ours against the peer that it is to be
/// judged by, and the memory used. Of repeated runs the median counts.
class StorageTable {
 public:
  explicit StorageTable(const Workload& workload) : workload_(workload) {}

  /// Subjects appear in the order of their first figures. Ends the program when a subject has read
  /// other bytes than the first one.
  void Add(const std::string& subject, const StorageFigures& figures);

  void Print() const;

 private:
  /// The median of a figure; 0 without figures.
  template <class Figure>
  double Median(const std::string& subject, Figure figure) const;
  void PrintOperation(StorageOperation operation) const;
  template <class Figure>
  void PrintMemory(const char* title, Figure figure) const;
  /// Says which subjects ran out of time in single puts.
  void PrintStops() const;

  Workload workload_;
  std::vector<std::string> subjects_;
  std::map<std::string, std::vector<StorageFigures>> figures_;
};

}  // namespace bench
