#include <random>

#include "tests/storage/record_test.h"
#include "vdstomgr/storage/read_storage.h"
#include "vdstomgr/storage/repair_storage.h"
#include "vdstomgr/storage/sync_storage.h"
#include "vdstomgr/storage/verify_storage.h"

namespace {

class Hostile : public Records {
 protected:
  /// All that can be done with what calls itself a storage. The sanitizers and the clock judge.
  void DoEverything(bool adds, bool repairs) {
    vdstomgr::VerifyStorage(path_.c_str());
    CBinData data;
    if (adds) vdstomgr::ReadStorage(path_.c_str(), "a", data);
    CString key;
    if (storage_.LoadStorageFile(path_.c_str(), 2, 3)) {
      for (const bool refresh : {false, true}) {
        Take(storage_.FindString("a", refresh));
        Take(storage_.FindStringAt("", refresh));
        Take(storage_.FindDWORD(0x80000000, refresh));
      }
      for (const int position : {-2, 0, 1, 5, 1 << 30}) {
        Take(position);
        storage_.GetKeyAtDWORD(position);
        storage_.GetKeyAtString(position, key);
      }
      storage_.RemoveAt(2);
      storage_.RemoveAt(0);
      if (adds) {
        Put("new", "data");
        storage_.Add(DWORD{77}, kBytes, 3, true);
        vdstomgr::SyncStorage(storage_);
        storage_.CompactStorageFileOnline(path_.c_str(), 0);
      }
    }
    storage_.FreeStorageFile();
    if (repairs) vdstomgr::RepairStorage(path_.c_str());
    if (adds) CRkStorageManager::CompactStorageFile(path_.c_str());
    for (const char* file : {"r.pdb.bak", "r.pdx.bak", "r.pdx.old"}) {
      std::filesystem::remove(Path(file));
    }
    TakeBoxes();
    TakeTraces();
  }

  /// The two files of a small storage, without slack.
  std::pair<std::string, std::string> Small(WORD key_type) {
    Make(key_type, 4);
    for (DWORD i = 0; i < 12; ++i) {
      EXPECT_TRUE(key_type == kText ? Put(std::string(1, char('a' + i)), std::string(i, 'x'))
                                    : storage_.Add(i << 28, kBytes, 3, true));
    }
    EXPECT_TRUE(storage_.RemoveAt(3));
    storage_.FreeStorageFile();
    const auto data_length = static_cast<unsigned char>(Read(path_)[24]);
    return {Read(path_).substr(0, 284U + data_length + 256U), Read(index_).substr(0, 32 + 14 * 22)};
  }
};

/// Numbers that lie about lengths and offsets, in the places where numbers stand, and some noise.
TEST_F(Hostile, FilesAreRefusedOrReadAsNoRecord) {
  std::mt19937 random(11);
  constexpr std::uint64_t kNumbers[] = {0,          1,          13,         0x7FFFFFFF,
                                        0x80000000, 0xFFFFFFFF, 1ULL << 32, (1ULL << 63) - 1,
                                        1ULL << 63, ~0ULL};
  const std::pair<std::string, std::string> stores[] = {Small(kText), Small(kNumber)};
  for (int round = 0; round < 3000; ++round) {
    auto [data, index] = stores[round % 2];
    for (auto changes = 1 + random() % 3; changes > 0; --changes) {
      std::string& file = random() % 2 == 0 ? data : index;
      const std::size_t field = random() % (random() % 3 == 0 ? 32 : file.size() + 1);
      std::uint64_t number = random() % 2 == 0 ? kNumbers[random() % 10] : random() % 100;
      const std::size_t width = 1U << random() % 4;
      for (std::size_t i = 0; i < width && field + i < file.size(); ++i, number >>= 8) {
        file[field + i] = static_cast<char>(number);
      }
      if (random() % 8 == 0) file.resize(random() % (file.size() + 1));
    }
    Write("r.pdb", data);
    Write("r.pdx", round % 50 == 0 ? stores[(round + 1) % 2].second : index);
    DoEverything(round % 60 == 0, round % 60 < 2);
  }
}

/// A walk that looks at every byte for a record must not look at all bytes for each of them.
TEST_F(Hostile, FilesDoNotMakeARepairLast) {
  Make(kText, 4);
  storage_.FreeStorageFile();
  std::string data = Read(path_).substr(0, 284);
  for (int i = 0; i < 200000; ++i) data += Bytes("FF1100001000000000FF");  // 1 MiB each
  data += std::string(1 << 20, '\0');
  for (std::size_t at = 300 + (1 << 20); at < data.size(); at += 10) data[at] = '\xFF';
  const std::uint64_t length = data.size() - 284;
  for (std::size_t i = 0; i < 8; ++i) data[24 + i] = static_cast<char>(length >> 8 * i);
  Write("r.pdb", data);
  DoEverything(false, true);
  EXPECT_EQ(vdstomgr::VerifyStorage(path_.c_str()).live_records, 0U);
}

/// What a process that died while it moved clusters leaves: a copy too many, and one half-written.
TEST_F(Hostile, ClustersLeftFromAMoveArePutAway) {
  auto [data, index] = Small(kText);
  index.resize(32 + 11 * 22);
  index += index.substr(32 + 22, 22) + std::string(22, '\0') + index.substr(32, 22);
  index[24] = static_cast<char>(14 * 22 & 0xFF);
  index[25] = static_cast<char>(14 * 22 >> 8);
  Write("r.pdb", data);
  Write("r.pdx", index);
  EXPECT_TRUE(vdstomgr::VerifyStorage(path_.c_str()).is_sound);
  ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str(), 2, 3));
  EXPECT_EQ(storage_.GetSize(), 11);
  EXPECT_EQ(Find("l"), std::string(11, 'x'));
  EXPECT_EQ(vdstomgr::VerifyStorage(path_.c_str()).finding_count, 0U);
}

}  // namespace
