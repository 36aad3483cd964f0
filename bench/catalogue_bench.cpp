#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <string>

#include "bench/peer_catalogue.h"
#include "bench/ratio_table.h"
#include "vdstomgr/catalogue/photo_db_manager.h"
#include "vdstomgr/platform/dao/rk_dao.h"
#include "vdstomgr/platform/dao/sqlite/functions.h"
#include "vdstomgr/platform/text/code_page.h"

// The catalogue against hand-written code on the same engine, each on its own copy of one file.
namespace bench {
namespace {

namespace fs = std::filesystem;

constexpr int kPhotosPerFolder = 100;
constexpr int kBatch = 1000;
constexpr int kRepetitions = 7;

std::string FormatGuid(std::uint64_t high, std::uint64_t low) {
  char guid[37];
  std::snprintf(guid, sizeof guid, "%08X-%04X-%04X-%04X-%012llX", unsigned(high >> 32),
                unsigned(high >> 16 & 0xFFFF), unsigned(high & 0xFFFF), unsigned(low >> 48),
                static_cast<unsigned long long>(low & 0xFFFFFFFFFFFF));
  return guid;
}

/// A GUID that begins with the time, ten milliseconds from one photo to the next: what the importer
/// gives.
std::string GuidOf(std::uint64_t number) {
  std::mt19937_64 random(number);
  const std::uint64_t milliseconds = 1'700'000'000'000 + number * 10;
  return FormatGuid(milliseconds << 16 | 0x7000 | (random() & 0xFFF),
                    (random() >> 2) | std::uint64_t{1} << 63);
}

/// A GUID without any order: what another host may give.
std::string RandomGuidOf(std::uint64_t number) {
  std::mt19937_64 random(~number);
  const std::uint64_t high = random();
  return FormatGuid(high, random());
}

DWORD FolderOf(std::uint64_t number) {
  return DWORD(1 + number / kPhotosPerFolder);
}

PHOTOINFO PhotoOf(std::uint64_t number) {
  char name[64];
  std::snprintf(name, sizeof name, "제주도 여행 %06llu.jpg",
                static_cast<unsigned long long>(number));
  PHOTOINFO photo;
  photo.SetGUID(GuidOf(number).c_str());
  std::snprintf(photo.szMD5, sizeof photo.szMD5, "%032llx",
                static_cast<unsigned long long>(number));
  photo.SetFileName(name);
  photo.SetLTBURL(("/home/user/사진/2024/" + std::string(name)).c_str());
  photo.SetOPURL(photo.GetLTBURL());
  photo.SetFileSize(3'000'000 + number);
  photo.SetWidthHeight(4032, 3024);
  photo.SetFolderID(FolderOf(number));
  photo.SetCameraModel("Canon EOS 40D");
  photo.SetExifVer("0221");
  photo.SetExifMaker("Canon");
  photo.SetExifModel("Canon EOS 40D");
  photo.SetExifExposure("1/125");
  photo.SetExifFnumber("2.8");
  photo.SetExifExposuerBias("0");
  photo.SetShootDate(std::int32_t(1'200'000'000 + number * 60));
  photo.SetExifShootDate(photo.ShootDate);
  photo.SetRegDate(1'700'000'000);
  photo.SetUserModify(1'700'000'000);
  return photo;
}

FOLDERINFO FolderRecord(DWORD id) {
  FOLDERINFO folder;
  folder.dwFolderID = id;
  folder.dwParentID = 0;
  std::snprintf(folder.szFolderName, sizeof folder.szFolderName, "폴더 %u", id);
  folder.nSpaceType = 0;
  return folder;
}

void Require(bool done, const char* what) {
  if (done) return;
  std::fprintf(stderr, "bench: %s failed\n", what);
  std::abort();
}

/// Copies of one catalogue: opened by the library, by its database class alone, and by hand.
class Pair {
 public:
  Pair(const fs::path& folder, int photos) : photos_(photos) {
    ours_path_ = (folder / ("ours-" + std::to_string(photos) + ".vdb")).string();
    peer_path_ = (folder / ("peer-" + std::to_string(photos) + ".vdb")).string();
    raw_path_ = (folder / ("raw-" + std::to_string(photos) + ".vdb")).string();
    Build();
    fs::copy_file(ours_path_, peer_path_);
    fs::copy_file(ours_path_, raw_path_);
    Require(ours_.OpenDB(ours_path_.c_str(), ""), "OpenDB");
    raw_.Open(raw_path_.c_str());
    peer_ = std::make_unique<PeerCatalogue>(peer_path_);
    ::sync();  // what building has left to write must not be paid for by what is measured
  }

  int Photos() const { return photos_; }
  CRkPhotoDBManager& Ours() { return ours_; }
  CRkDaoDatabase& Raw() { return raw_; }
  PeerCatalogue& Peer() { return *peer_; }

  /// Takes out what a run has added, so that every run meets the same catalogue.
  void RemoveAdded() {
    for (const std::string& path : {ours_path_, peer_path_}) {
      sqlite3* db = nullptr;
      sqlite3_open(path.c_str(), &db);
      vdstomgr::sqlite::InstallFunctions(db);
      const std::string sql = "DELETE FROM PhotoMaster WHERE rowid > " + std::to_string(photos_) +
                              "; PRAGMA wal_checkpoint(TRUNCATE)";
      Require(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, sql.c_str());
      sqlite3_close(db);
    }
  }

 private:
  void Build() {
    CRkPhotoDBManager manager;
    Require(manager.CreateDB(ours_path_.c_str(), nullptr), "CreateDB");
    Require(manager.OpenDB(ours_path_.c_str(), ""), "OpenDB");
    CArray<FOLDERINFO, FOLDERINFO&> folders;
    for (DWORD id = 1; id <= FolderOf(std::uint64_t(photos_)); ++id) folders.Add(FolderRecord(id));
    Require(manager.AddFolder(folders, 0), "AddFolder");
    for (int done = 0; done < photos_; done += kBatch) {
      CArray<PHOTOINFO, PHOTOINFO&> batch;
      for (int i = 0; i < kBatch; ++i) batch.Add(PhotoOf(std::uint64_t(done + i)));
      Require(manager.AddPhotoInfo(batch), "AddPhotoInfo");
    }
    manager.CloseDB();
  }

  int photos_;
  std::string ours_path_;
  std::string peer_path_;
  std::string raw_path_;
  CRkPhotoDBManager ours_;
  CRkDaoDatabase raw_;
  std::unique_ptr<PeerCatalogue> peer_;
};

using Operation = std::function<bool(Pair&, std::uint64_t number)>;

/// Reads and updates: a random photo or folder each time, the same ones for both sides.
void Register(const std::string& name, Pair& pair, Operation operation, int iterations) {
  const auto run = [&pair, operation](benchmark::State& state) {
    std::mt19937_64 random(42);
    for (auto _ : state) {
      if (!operation(pair, random() % std::uint64_t(pair.Photos()))) state.SkipWithError("failed");
    }
  };
  benchmark::RegisterBenchmark((name + "/" + std::to_string(pair.Photos())).c_str(), run)
      ->Iterations(iterations)
      ->Unit(benchmark::kMicrosecond)
      ->UseRealTime();
}

/// Additions: new numbers each time, taken out again afterwards.
void RegisterAdding(const std::string& name, Pair& pair, Operation operation, int items,
                    int iterations) {
  const auto run = [&pair, operation, items](benchmark::State& state) {
    auto number = std::uint64_t(pair.Photos());
    for (auto _ : state) {
      if (!operation(pair, number)) state.SkipWithError("failed");
      number += std::uint64_t(items);
    }
    state.counters["items"] = items;
    pair.RemoveAdded();
  };
  benchmark::RegisterBenchmark((name + "/" + std::to_string(pair.Photos())).c_str(), run)
      ->Iterations(iterations)
      ->Unit(benchmark::kMicrosecond)
      ->UseRealTime();
}

using Guid = std::string (*)(std::uint64_t number);

CArray<PHOTOINFO, PHOTOINFO&> BatchFrom(std::uint64_t number, Guid guid) {
  CArray<PHOTOINFO, PHOTOINFO&> batch;
  for (int i = 0; i < kBatch; ++i) {
    PHOTOINFO photo = PhotoOf(number + std::uint64_t(i));
    photo.SetGUID(guid(number + std::uint64_t(i)).c_str());
    batch.Add(photo);
  }
  return batch;
}

template <Guid guid>
bool AddBatchOurs(Pair& pair, std::uint64_t number) {
  CArray<PHOTOINFO, PHOTOINFO&> batch = BatchFrom(number, guid);
  return pair.Ours().AddPhotoInfo(batch);
}

template <Guid guid>
bool AddBatchPeer(Pair& pair, std::uint64_t number) {
  const CArray<PHOTOINFO, PHOTOINFO&> batch = BatchFrom(number, guid);
  pair.Peer().Begin();
  bool done = true;
  for (const PHOTOINFO& photo : batch) done = done && pair.Peer().InsertPhoto(photo);
  pair.Peer().Commit();
  return done;
}

// Numbers that no run has used before, so that an update always has something to write.
std::int32_t Fresh() {
  static std::int32_t next = 0;
  return ++next;
}

/// A record of which only the time of modification differs from the stored one. (Replaced takes the
/// other half of the photos.)
PHOTOINFO Rated(std::uint64_t number) {
  number &= ~std::uint64_t{1};
  PHOTOINFO photo = PhotoOf(number);
  photo.SetUserModify(1'710'000'000 + Fresh());
  return photo;
}

/// A record that differs in nearly every column, the indexed ones included.
PHOTOINFO Replaced(std::uint64_t number, int photos) {
  number |= 1;
  PHOTOINFO photo = PhotoOf(number + std::uint64_t(photos) + std::uint64_t(Fresh()) * 7);
  photo.SetGUID(GuidOf(number).c_str());
  photo.SetUserModify(1'710'000'000 + Fresh());
  photo.SetRegDate(1'710'000'000 + Fresh() * 86'400 % 100'000'000);
  return photo;
}

void RegisterAll(Pair& pair) {
  RegisterAdding("AddPhotoInfo batch/ours", pair, AddBatchOurs<GuidOf>, kBatch, 5);
  RegisterAdding("AddPhotoInfo batch/peer", pair, AddBatchPeer<GuidOf>, kBatch, 5);
  RegisterAdding("AddPhotoInfo batch, random keys/ours", pair, AddBatchOurs<RandomGuidOf>, kBatch,
                 5);
  RegisterAdding("AddPhotoInfo batch, random keys/peer", pair, AddBatchPeer<RandomGuidOf>, kBatch,
                 5);
  RegisterAdding(
      "AddPhotoInfo/ours", pair,
      [](Pair& p, std::uint64_t n) {
        PHOTOINFO photo = PhotoOf(n);
        return p.Ours().AddPhotoInfo(photo, false);
      },
      1, 2000);
  RegisterAdding(
      "AddPhotoInfo/peer", pair,
      [](Pair& p, std::uint64_t n) {
        const PHOTOINFO photo = PhotoOf(n);
        return !p.Peer().HasPhoto(photo.szGUID) && p.Peer().InsertPhoto(photo);
      },
      1, 2000);
  Register(
      "GetPhotoInfo/ours", pair,
      [](Pair& p, std::uint64_t n) {
        PHOTOINFO photo;
        return p.Ours().GetPhotoInfo(GuidOf(n).c_str(), photo);
      },
      20'000);
  Register(
      "GetPhotoInfo/peer", pair,
      [](Pair& p, std::uint64_t n) {
        PHOTOINFO photo;
        return p.Peer().ReadPhoto(GuidOf(n).c_str(), photo);
      },
      20'000);
  Register(
      "SetPhotoInfo/ours", pair,
      [](Pair& p, std::uint64_t n) {
        PHOTOINFO photo = Replaced(n, p.Photos());
        return p.Ours().SetPhotoInfo(photo, false);
      },
      3000);
  Register(
      "SetPhotoInfo/peer", pair,
      [](Pair& p, std::uint64_t n) { return p.Peer().UpdatePhoto(Replaced(n, p.Photos())); }, 3000);
  Register(
      "SetPhotoInfo, 1 column/ours", pair,
      [](Pair& p, std::uint64_t n) {
        PHOTOINFO photo = Rated(n);
        return p.Ours().SetPhotoInfo(photo, false);
      },
      3000);
  Register(
      "SetPhotoInfo, 1 column/peer", pair,
      [](Pair& p, std::uint64_t n) { return p.Peer().UpdatePhoto(Rated(n)); }, 3000);
  Register(
      "GetFolderInfo/ours", pair,
      [](Pair& p, std::uint64_t n) {
        FOLDERINFO folder;
        return p.Ours().GetFolderInfo(FolderOf(n), folder);
      },
      20'000);
  Register(
      "GetFolderInfo/peer", pair,
      [](Pair& p, std::uint64_t n) {
        FOLDERINFO folder;
        return p.Peer().ReadFolder(FolderOf(n), folder);
      },
      20'000);
  Register(
      "Execute, cached/ours", pair,
      [](Pair& p, std::uint64_t n) {
        const std::string sql = "UPDATE PhotoMaster SET szTitle = '제목 " + std::to_string(n) +
                                "', byteInfoSync = 1 WHERE szGUID = '" + GuidOf(n) + "'";
        p.Raw().Execute(sql.c_str(), 0);
        return p.Raw().GetRecordsAffected() == 1;
      },
      3000);
  Register(
      "Execute, cached/peer", pair,
      [](Pair& p, std::uint64_t n) {
        return p.Peer().SetTitle(GuidOf(n).c_str(), ("제목 " + std::to_string(n)).c_str());
      },
      3000);
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  vdstomgr::SetTextCodePage(vdstomgr::TextCodePage::utf8);
  const std::string repetitions = "--benchmark_repetitions=" + std::to_string(bench::kRepetitions);
  std::vector<char*> arguments(argv, argv + argc);
  arguments.push_back(const_cast<char*>(repetitions.c_str()));
  arguments.push_back(const_cast<char*>("--benchmark_report_aggregates_only=true"));
  arguments.push_back(const_cast<char*>("--benchmark_enable_random_interleaving=true"));
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
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

  // One size after the other: the small catalogue is measured before the large one keeps the disk
  // busy.
  bench::RatioTable table;
  for (const int photos : sizes) {
    bench::Pair pair(folder, photos);
    bench::RegisterAll(pair);
    benchmark::RunSpecifiedBenchmarks(&table);
    benchmark::ClearRegisteredBenchmarks();
  }
  table.Print();
  bench::fs::remove_all(folder);
  return 0;
}
