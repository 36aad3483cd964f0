#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <vector>

#include "bench/catalogue_records.h"
#include "bench/search_names.h"
#include "bench/search_peers.h"
#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/search/initials.h"
#include "vdstomgr/search/search_db_manager.h"

// Searches by name against the engine's own LIKE on the same table and against its trigram index,
// and what our index costs.
namespace bench {
namespace {

namespace fs = std::filesystem;
using vdstomgr::PhotoArray;

constexpr int kBatch = 1000;
constexpr int kFirst = 100;
constexpr int kAll = 100'000'000;
constexpr double kLongEnough = 0.5;  // seconds that one figure is measured for at most

/// The median time of one call in milliseconds, and how many photos it found.
struct Measured {
  double ms = 0;
  int hits = 0;
};

Measured Measure(const std::function<void(PhotoArray&)>& search) {
  std::vector<double> times;
  Measured measured;
  for (double total = 0; times.size() < 3 || (total < kLongEnough && times.size() < 51);) {
    PhotoArray photos;
    const auto start = std::chrono::steady_clock::now();
    search(photos);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    times.push_back(took.count());
    total += took.count();
    measured.hits = photos.GetSize();
  }
  std::ranges::nth_element(times, times.begin() + std::ptrdiff_t(times.size() / 2));
  measured.ms = times[times.size() / 2] * 1e3;
  return measured;
}

void AddBatches(CRkSearchDBManager& search, std::uint64_t first, std::uint64_t count) {
  for (std::uint64_t done = 0; done < count; done += kBatch) {
    PhotoArray batch;
    for (std::uint64_t i = 0; i < kBatch; ++i) batch.Add(NamedPhoto(first + done + i));
    Require(search.AddPhotoInfo(batch), "AddPhotoInfo");
  }
}

/// Microseconds for a photo of a batch, on top of what is in the file.
double BatchInsert(const std::string& path, std::uint64_t photos, bool with_index) {
  CRkSearchDBManager search;
  Require(search.OpenDB(path.c_str(), ""), "OpenDB");
  if (!with_index) RemoveTextIndex(path);
  std::vector<double> times;
  for (std::uint64_t batch = 0; batch < 50; ++batch) {
    const auto start = std::chrono::steady_clock::now();
    AddBatches(search, photos + batch * kBatch, kBatch);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    times.push_back(took.count());
  }
  double total = 0;
  for (const double time : times) total += time;
  return total * 1e6 / (50.0 * kBatch);
}

void PrintRow(const std::string& what, const char* limit, const Measured& ours,
              const Measured& like, const Measured& trigram) {
  std::printf("%-26s %6s %8d %10.3f %10.3f %8.1f %11.3f\n", what.c_str(), limit, ours.hits, ours.ms,
              like.ms, like.ms / ours.ms, trigram.ms);
}

void CompareSearches(CRkSearchDBManager& ours, PlainLike& like, Trigram& trigram) {
  std::printf("%-26s %6s %8s %10s %10s %8s %11s\n", "search", "most", "hits", "ours, ms",
              "LIKE, ms", "faster", "trigram, ms");
  for (const SearchedWord& word : kSearchedWords) {
    for (const int most : {kFirst, kAll}) {
      const auto search = word.by_initials
                              ? vdstomgr::SearchFileNameByInitials
                              : [](CRkSearchDBManager& db, const char* text, PhotoArray& photos,
                                   int max) { return db.SearchFileName(text, photos, max); };
      const Measured our = Measure([&](PhotoArray& p) { search(ours, word.text, p, most); });
      const bool has_peers = !word.by_initials;  // the engine knows no initials
      const Measured plain =
          has_peers ? Measure([&](PhotoArray& p) { like.Search(word.text, most, p); }) : Measured();
      const Measured tri = has_peers
                               ? Measure([&](PhotoArray& p) { trigram.Search(word.text, most, p); })
                               : Measured();
      PrintRow(std::string(word.kind) + ": " + word.text, most == kFirst ? "100" : "all", our,
               plain, tri);
    }
  }
  PrintRow("most recent", "100",
           Measure([&](PhotoArray& p) { ours.SearchRecentUpload(p, kFirst); }),
           Measure([&](PhotoArray& p) { like.Recent(kFirst, p); }), {});
  PrintRow("largest", "100", Measure([&](PhotoArray& p) { ours.SearchBigFile(p, kFirst); }),
           Measure([&](PhotoArray& p) { like.Big(kFirst, p); }), {});
}

void Run(const fs::path& folder, std::uint64_t photos) {
  const std::string with = (folder / "with.db").string(),
                    without = (folder / "without.db").string();
  const std::string trigrams = (folder / "trigrams.db").string();
  for (const std::string& path : {with, without}) {
    CRkSearchDBManager search;
    Require(search.CreateDB(path.c_str(), "") && search.OpenDB(path.c_str(), ""), "CreateDB");
    if (path == without) RemoveTextIndex(path);
    AddBatches(search, 0, photos);
  }
  const double bytes = double(fs::file_size(with)) - double(fs::file_size(without));
  std::printf("\n%llu names\n", static_cast<unsigned long long>(photos));
  fs::copy_file(without, trigrams);
  const Trigram::Cost cost = Trigram::Make(trigrams);
  {
    CRkSearchDBManager ours;
    Require(ours.OpenDB(with.c_str(), ""), "OpenDB");
    PlainLike like(without);
    Trigram trigram(trigrams);
    CompareSearches(ours, like, trigram);
  }
  const double ours_us = BatchInsert(with, photos, true);
  const double bare_us = BatchInsert(without, photos, false);
  std::printf("index: %.1f bytes a name (trigram: %.1f, made in %.1f s)\n", bytes / double(photos),
              cost.bytes / double(photos), cost.seconds);
  std::printf("batch insert: %.2f us a photo, without the index %.2f: %.2f times\n", ours_us,
              bare_us, ours_us / bare_us);
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: vdsto_search_bench FOLDER [PHOTOS...]\n");
    return 2;
  }
  vdstomgr::SetTextCodePage(vdstomgr::TextCodePage::utf8);
  std::vector<std::uint64_t> sizes;
  for (int i = 2; i < argc; ++i) sizes.push_back(std::strtoull(argv[i], nullptr, 10));
  if (sizes.empty()) sizes = {10'000, 1'000'000};
  for (const std::uint64_t photos : sizes) {
    const bench::fs::path folder = argv[1];
    bench::fs::remove_all(folder);
    bench::fs::create_directories(folder);
    bench::Run(folder, photos);
    bench::fs::remove_all(folder);
  }
  return 0;
}
