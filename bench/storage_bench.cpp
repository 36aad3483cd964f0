#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <set>
#include <string_view>
#include <system_error>

#include "bench/ratio_table.h"
#include "bench/storage_index.h"
#include "bench/storage_table.h"
#include "bench/storage_workload.h"

// The record storage against other stores of blobs, and the sorted array index against sorting by
// hand.
namespace bench {
namespace {

namespace fs = std::filesystem;

constexpr int kRepetitions = 5;

const Subject kSubjects[] = {
    {"ours", OpenOurs},       {"limit", OpenLimit},   {"flat", OpenFlatLimit},   {"LMDB", OpenLmdb},
    {"RocksDB", OpenRocksDb}, {"SQLite", OpenSqlite}, {"files", OpenPlainFiles},
};

struct Arguments {
  fs::path folder;
  std::vector<Workload> workloads;
  StorageClock clock = StorageClock::elapsed;
  std::string subjects;  ///< comma-separated; empty: all

  bool Wants(const Subject& subject) const {
    return subjects.empty() ||
           ("," + subjects + ",").find("," + subject.name + ",") != subjects.npos;
  }
};

bool Parse(int count, char** texts, Arguments& arguments) {
  constexpr std::string_view kSubjectsOption = "--subjects=";
  for (int i = 1; i < count; ++i) {
    const std::string_view text = texts[i];
    Workload workload = {};
    if (text.starts_with(kSubjectsOption)) {
      arguments.subjects = text.substr(kSubjectsOption.size());
    } else if (text == "--processor-time") {
      arguments.clock = StorageClock::processor;
    } else if (arguments.folder.empty()) {
      arguments.folder = text;
    } else if (std::sscanf(texts[i], "%dx%d", &workload.records, &workload.blob_bytes) == 2 &&
               workload.records > 0 && workload.blob_bytes > 0) {
      arguments.workloads.push_back(workload);
    } else {
      return false;
    }
  }
  if (arguments.workloads.empty()) {
    arguments.workloads = {{20'000, 4096, {}}, {20'000, 20'480, {}}, {1'000'000, 4096, {}}};
  }
  for (Workload& workload : arguments.workloads) workload.clock = arguments.clock;
  return !arguments.folder.empty();
}

/// One subject after the other, in turns, so that a disturbance of the machine does not hit one of
/// them alone; each turn begins with another subject, and each subject without files of another.
void RunStores(const Arguments& arguments) {
  std::vector<Subject> subjects;
  std::copy_if(std::begin(kSubjects), std::end(kSubjects), std::back_inserter(subjects),
               [&](const Subject& subject) { return arguments.Wants(subject); });
  for (const Workload& workload : arguments.workloads) {
    StorageTable table(workload);
    const int repetitions = workload.records < kManyRecords ? kRepetitions : 1;
    for (int repetition = 0; repetition < repetitions; ++repetition) {
      for (std::size_t i = 0; i < subjects.size(); ++i) {
        const Subject& subject = subjects[(i + std::size_t(repetition)) % subjects.size()];
        table.Add(subject.name, Measure(workload, subject, arguments.folder / "store"));
      }
    }
    table.Print();
  }
}

void RunIndexes(const Arguments& arguments) {
  std::set<int> sizes;
  for (const Workload& workload : arguments.workloads) sizes.insert(workload.records);
  RatioTable table("units", 1.2);
  for (const int units : sizes) {
    IndexedArray array(arguments.folder / "array", units);
    RegisterIndexBenchmarks(array);
    benchmark::RunSpecifiedBenchmarks(&table);
    benchmark::ClearRegisteredBenchmarks();
  }
  table.Print();
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  std::vector<char*> options(argv, argv + argc);
  const std::string repetitions = "--benchmark_repetitions=" + std::to_string(bench::kRepetitions);
  options.push_back(const_cast<char*>(repetitions.c_str()));
  options.push_back(const_cast<char*>("--benchmark_report_aggregates_only=true"));
  options.push_back(const_cast<char*>("--benchmark_enable_random_interleaving=true"));
  int count = static_cast<int>(options.size());
  benchmark::Initialize(&count, options.data());
  bench::Arguments arguments;
  if (!bench::Parse(count, options.data(), arguments)) {
    std::fprintf(stderr,
                 "usage: vdsto_storage_bench [benchmark options] [--subjects=NAME,...] "
                 "[--processor-time] FOLDER [RECORDSxBYTES...]\n");
    return 2;
  }
  bench::fs::create_directories(arguments.folder);
  bench::RunStores(arguments);
  bench::RunIndexes(arguments);
  std::error_code not_empty;
  bench::fs::remove(arguments.folder, not_empty);
  return 0;
}
