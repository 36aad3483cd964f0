#include "bench/storage_table.h"

#include <algorithm>
#include <cstdio>

namespace bench {
namespace {

struct Row {
  const char* title;
  const char* peer;     ///< null: nothing to be judged by
  double small_target;  ///< the ratio that ours may reach with few records
  double large_target;  ///< and with a hundred thousand and more
};

constexpr Row kRows[kStorageOperations] = {
    {"put", "limit", 1.2, 1.5},       //
    {"bulk put", "limit", 1.1, 1.1},  //
    {"first get", "LMDB", 1.2, 1.2},  //
    {"get", "LMDB", 1.2, 1.2},        //
    {"get missing", nullptr, 0, 0},   //
    {"delete", nullptr, 0, 0},        //
    {"compact", "limit", 1.3, 1.3},
};

}  // namespace

void StorageTable::Add(const std::string& subject, const StorageFigures& figures) {
  if (!subjects_.empty()) {
    Require(figures.sum == figures_[subjects_.front()].front().sum, "reading the same bytes");
  }
  if (!figures_.contains(subject)) subjects_.push_back(subject);
  figures_[subject].push_back(figures);
}

template <class Figure>
double StorageTable::Median(const std::string& subject, Figure figure) const {
  const auto found = figures_.find(subject);
  if (found == figures_.end()) return 0;
  std::vector<double> values;
  for (const StorageFigures& figures : found->second) values.push_back(figure(figures));
  const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

void StorageTable::Print() const {
  std::printf("\n%d records of %d bytes, us %sper record\n%-14s", workload_.records,
              workload_.blob_bytes,
              workload_.clock == StorageClock::elapsed ? "" : "of processor time ", "");
  for (const std::string& subject : subjects_) std::printf(" %10s", subject.c_str());
  std::printf("   ours/peer, target\n");
  for (std::size_t i = 0; i < kStorageOperations; ++i) PrintOperation(StorageOperation(i));
  PrintMemory("peak, MiB", [](const StorageFigures& figures) { return figures.peak_mib; });
  PrintMemory("private, MiB", [](const StorageFigures& figures) { return figures.private_mib; });
  PrintStops();
  std::fflush(stdout);
}

void StorageTable::PrintOperation(StorageOperation operation) const {
  const Row& row = kRows[operation];
  const auto us = [operation](const StorageFigures& figures) { return figures.us[operation]; };
  std::printf("%-14s", row.title);
  for (const std::string& subject : subjects_) {
    const double value = Median(subject, us);
    value == 0 ? std::printf(" %10s", "-") : std::printf(" %10.2f", value);
  }
  const double ours = Median("ours", us);
  const double peer = row.peer == nullptr ? 0 : Median(row.peer, us);
  if (ours != 0 && peer != 0) {
    const double target = workload_.records < kManyRecords ? row.small_target : row.large_target;
    std::printf("   %5.2f x %-5s  %.1f %s", ours / peer, row.peer, target,
                ours / peer <= target ? "met" : "MISSED");
  }
  std::printf("\n");
}

template <class Figure>
void StorageTable::PrintMemory(const char* title, Figure figure) const {
  std::printf("%-14s", title);
  for (const std::string& subject : subjects_) std::printf(" %10.0f", Median(subject, figure));
  std::printf("\n");
}

void StorageTable::PrintStops() const {
  for (const std::string& subject : subjects_) {
    const int done = int(Median(subject, [](const StorageFigures& f) { return f.put_records; }));
    if (done == workload_.records) continue;
    std::printf("%s: the time for single puts was up after %d records\n", subject.c_str(), done);
  }
}

}  // namespace bench
