#include <cstdio>

#include "bench/fuzz/fuzz_files.h"
#include "vdstomgr/storage/array_file.h"
#include "vdstomgr/storage/record_storage.h"

// Makes a small corpus for each fuzz target: files that the library itself has written, without the
// slack behind their last unit or record, and one step of each kind.
// Usage: make_fuzz_seeds FOLDER
namespace {

using fuzz::Bytes;
using fuzz::Playground;
using fuzz::Step;

constexpr int kUnits = 6;
constexpr std::size_t kArrayHeader = 32;
constexpr std::size_t kDataHeader = 284;
constexpr std::size_t kRecordFrame = 14;
constexpr std::size_t kClusterFrame = 18;

std::string KeyOf(int i) {
  return "k" + std::to_string(i % 4);  // some keys twice
}

/// Two rounds of each operation, with small positions and short keys.
std::vector<Step> StepsFrom(int first) {
  std::vector<Step> steps;
  for (int i = 0; i < 20; ++i) {
    steps.push_back({static_cast<BYTE>(first + i), static_cast<BYTE>(i == 0 ? 'k' : i % 5), '1',
                     static_cast<BYTE>(i % 2)});
  }
  return steps;
}

void Save(const std::string& path, const Bytes& content) {
  std::FILE* const file = std::fopen(path.c_str(), "wb");
  fuzz::Require(file != nullptr, path.c_str());
  std::fwrite(content.data(), 1, content.size(), file);
  std::fclose(file);
}

Bytes ArrayOf(int unit_size) {
  const Playground& playground = Playground::Get();
  playground.Clear();
  const std::string path = playground.Path("seed.rfa");
  CRkFileArrayManager array;
  fuzz::Require(CRkFileArrayManager::CreateFileArray(path.c_str(), 7, unit_size) &&
                    array.OpenFile(path.c_str()),
                "an array");
  for (int i = 0; i < kUnits; ++i) {
    Bytes unit(static_cast<std::size_t>(unit_size));
    const std::string key = KeyOf(i);
    std::copy_n(key.begin(), std::min(key.size(), unit.size()), unit.begin());
    array.Add(unit.data());
  }
  array.CloseFile();
  return playground.Read("seed.rfa", kArrayHeader + std::size_t(kUnits * unit_size));
}

/// A store with one record that is too short to be one. Its length is wrong in the data file and in
/// the index file alike, and the end mark stands where the length says: inside the key.
Bytes ShrunkStore() {
  const Playground& playground = Playground::Get();
  playground.Clear();
  const std::string path = playground.Path("seed.pdb");
  CRkStorageManager storage;
  fuzz::Require(CRkStorageManager::CreateStorageFile(path.c_str(), 7, 'D', 4) &&
                    storage.LoadStorageFile(path.c_str()) &&
                    storage.Add(0xFF000001, nullptr, 0, true),
                "a store");
  storage.FreeStorageFile();
  Bytes record = playground.Read("seed.pdb", kDataHeader + kRecordFrame + 4);
  Bytes index = playground.Read("seed.pdx", kArrayHeader + kClusterFrame + 4);
  constexpr BYTE kShort = kRecordFrame;
  record[kDataHeader + 2] = kShort;
  index[kArrayHeader + 4 + kClusterFrame - sizeof(DWORD)] = kShort;
  return fuzz::Input::Compose(StepsFrom(0), &record, index);
}

Bytes StoreOf(WORD key_type, WORD key_length, const std::vector<Step>& steps) {
  const Playground& playground = Playground::Get();
  playground.Clear();
  const std::string path = playground.Path("seed.pdb");
  CRkStorageManager storage;
  fuzz::Require(CRkStorageManager::CreateStorageFile(path.c_str(), 7, key_type, key_length) &&
                    storage.LoadStorageFile(path.c_str()),
                "a store");
  const BYTE data[] = {'d', 'a', 't', 'a'};
  for (int i = 0; i < kUnits; ++i) {
    storage.Add(static_cast<DWORD>(i), data, 4, false);
    storage.Add(KeyOf(i).c_str(), data, 4, false);
  }
  storage.RemoveAt(1);
  storage.FreeStorageFile();
  const std::size_t record = kRecordFrame + key_length + sizeof data;
  const std::size_t cluster = kClusterFrame + key_length;
  const Bytes records = playground.Read("seed.pdb", kDataHeader + kUnits * record);
  const Bytes index = playground.Read("seed.pdx", kArrayHeader + (kUnits - 1) * cluster);
  return fuzz::Input::Compose(steps, &records, index);
}

}  // namespace

int main(int argc, char** argv) {
  fuzz::Require(argc == 2, "usage: make_fuzz_seeds FOLDER");
  const std::string folder = argv[1];
  for (const char* target : {"/array_file", "/record_storage"}) {
    std::filesystem::create_directories(folder + target);
  }
  for (const int unit_size : {1, 4, 16, 40}) {
    Save(folder + "/array_file/units-of-" + std::to_string(unit_size),
         fuzz::Input::Compose(StepsFrom(2), nullptr, ArrayOf(unit_size)));
  }
  const std::string stores = folder + "/record_storage/";
  Save(stores + "numbers", StoreOf('D', 4, StepsFrom(0)));
  Save(stores + "texts", StoreOf('S', 8, StepsFrom(0)));
  Save(stores + "images", StoreOf('S', 44, StepsFrom(0x80)));
  Save(stores + "shrunk", ShrunkStore());
  Save(stores + "untouched", StoreOf('S', 2, {}));
  return 0;
}
