#include <benchmark/benchmark.h>

#include <cstdio>
#include <random>
#include <regex>

#include "bench/catalogue_case.h"
#include "bench/catalogue_files.h"
#include "bench/ratio_table.h"
#include "vdstomgr/platform/text/code_page.h"

// The catalogue against hand-written code on the same engine, each case on copies of one file.
namespace bench {
namespace {

namespace fs = std::filesystem;

constexpr int kRepetitions = 7;

/// What is read or changed is random, the same for both sides; what is added is new each time.
void Measure(benchmark::State& state, const Case& test, const Operation& operation,
             const std::string& path, int photos) {
  std::mt19937_64 random(42);
  auto added = std::uint64_t(photos);
  for (auto _ : state) {
    if (test.prepare) {
      state.PauseTiming();
      test.prepare(path, photos);
      state.ResumeTiming();
    }
    const std::uint64_t number = test.adds > 0 ? added : random() % std::uint64_t(photos);
    if (!operation(number)) state.SkipWithError("failed");
    added += std::uint64_t(test.adds);
  }
  if (const int items = test.adds + test.items; items > 0) state.counters["items"] = items;
  if (test.adds > 0) RemoveAdded(path, photos);
}

void Register(const Case& test, const char* side, const Operation& operation,
              const std::string& path, int photos) {
  const auto run = [&test, operation, path, photos](benchmark::State& state) {
    Measure(state, test, operation, path, photos);
  };
  const std::string name = test.name + "/" + side + "/" + std::to_string(photos);
  benchmark::RegisterBenchmark(name.c_str(), run)
      ->Iterations(test.iterations)
      ->Unit(benchmark::kMicrosecond)
      ->UseRealTime();
}

void Run(const Case& test, const CatalogueMaster& master, RatioTable& table) {
  const CaseFiles files(master);
  Register(test, "ours", test.ours(files.Ours()), files.Ours(), master.Photos());
  Register(test, "peer", test.peer(files.Peer()), files.Peer(), master.Photos());
  benchmark::RunSpecifiedBenchmarks(&table);
  benchmark::ClearRegisteredBenchmarks();
  if (!test.note.empty()) table.Note(test.name, test.note);
}

std::vector<Case> CasesToRun() {
  std::vector<Case> cases;
  const std::regex filter(benchmark::GetBenchmarkFilter());
  for (const auto& subject : {PhotoCases(), FolderCases(), TagCases(), StatementCases(),
                              ListCases(), SummaryCases(), QueueCases()}) {
    for (const Case& test : subject) {
      if (std::regex_search(test.name, filter)) cases.push_back(test);
    }
  }
  return cases;
}

void Initialize(int& count, std::vector<char*>& arguments) {
  static std::string options[] = {"--benchmark_repetitions=" + std::to_string(kRepetitions),
                                  "--benchmark_report_aggregates_only=true",
                                  "--benchmark_enable_random_interleaving=true"};
  for (std::string& option : options) arguments.push_back(option.data());
  count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  vdstomgr::SetTextCodePage(vdstomgr::TextCodePage::utf8);
  std::vector<char*> arguments(argv, argv + argc);
  int count = 0;
  bench::Initialize(count, arguments);
  if (count < 2) {
    std::fprintf(stderr, "usage: vdsto_bench [benchmark options] FOLDER [PHOTOS...]\n");
    return 2;
  }
  const bench::fs::path folder = arguments[1];
  bench::fs::remove_all(folder);
  bench::fs::create_directories(folder);
  std::vector<int> sizes;
  for (int i = 2; i < count; ++i) sizes.push_back(std::atoi(arguments[std::size_t(i)]));
  if (sizes.empty()) sizes = {10'000, 1'000'000};

  const std::vector<bench::Case> cases = bench::CasesToRun();
  bench::RatioTable table;
  for (const int photos : sizes) {
    const bench::CatalogueMaster master(folder, photos);
    for (const bench::Case& test : cases) bench::Run(test, master, table);
  }
  table.Print();
  bench::fs::remove_all(folder);
  return 0;
}
