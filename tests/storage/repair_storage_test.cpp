#include "vdstomgr/storage/repair_storage.h"

#include <map>
#include <random>

#include "tests/storage/faulty_environment.h"
#include "tests/storage/record_test.h"
#include "tests/system.h"
#include "vdstomgr/storage/finish_compaction.h"
#include "vdstomgr/storage/read_storage.h"
#include "vdstomgr/storage/verify_storage.h"

namespace {

using vdstomgr::RepairStorage;
using vdstomgr::VerifyStorage;

/// Thousands of repairs would wait for the device most of the time.
struct OnRamDisk {
#if !defined(_WIN32)
  OnRamDisk() {
    if (std::filesystem::exists("/dev/shm")) setenv("TEST_TMPDIR", "/dev/shm", 1);
  }
  ~OnRamDisk() {
    unsetenv("TEST_TMPDIR");
  }
#endif
};

/// A small storage whose data looks like marks and whose records have few different lengths: the
/// worst for who looks for records.
class Repair : OnRamDisk, public Records {
 protected:
  Repair() {
    Make(kText, 44);
    std::mt19937 random(11);
    for (int i = 0; i < 14; ++i) {
      std::string data;
      while (data.size() < 90U + 60U * (i % 2)) {
        const int choice = static_cast<int>(random() % 4);
        data += choice < 3 ? Bytes(choice < 2 ? "00ff" : "ff11") : std::string(1, char(random()));
      }
      std::string key = "image " + std::to_string(i * 5 % 14);
      key.resize(44, 'x');
      images_[key] = data;
      EXPECT_TRUE(Records::Put(key, data));
    }
    for (const char* prefix : {"image 3x", "image 9x"}) {
      images_.erase(images_.lower_bound(prefix));
      EXPECT_TRUE(storage_.RemoveAt(storage_.FindStringAt(prefix, true)));
    }
    storage_.FreeStorageFile();
    data_ = Read(path_).substr(0, 284 + 14 * 178 + 400);
    index_bytes_ = Read(index_).substr(0, 32 + 12 * 62 + 100);
    ends_ = {};
    std::size_t at = 284;
    while (at + 6 < data_.size() && data_[at] == '\xFF') {
      ends_[at] = std::string(data_, at + 10, 44);
      at += static_cast<unsigned char>(data_[at + 2]);
    }
    end_ = at;
  }
  void Place(const std::string& data, const std::string& index) {
    Write("r.pdb", data);
    Write("r.pdx", index);
    std::filesystem::remove(index_ + ".old");
  }
  /// The key of the record that has the byte; empty outside of records.
  std::string KeyAt(std::size_t offset) const {
    if (offset < 284 || offset >= end_) return "";
    return std::prev(ends_.upper_bound(offset))->second;
  }
  /// That the storage is sound and has all images as they were, but those of which `lost` says that
  /// they may be gone, and nothing else.
  void ExpectWhole(const std::function<bool(const std::string&)>& lost) {
    ASSERT_TRUE(VerifyStorage(path_.c_str()).is_sound);
    EXPECT_TRUE(RepairStorage(path_.c_str()).was_sound);
    ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str(), 2, 3));
    for (const auto& [key, data] : images_) {
      const std::string found = Find(key);
      ASSERT_TRUE(found == data || (found == "-" && lost(key))) << key;
    }
    storage_.FreeStorageFile();
  }
  void Compact() {
    ASSERT_TRUE(CRkStorageManager::CompactStorageFile(path_.c_str()));
    for (const std::string& file : {path_, index_}) std::filesystem::remove(file + ".bak");
  }

  std::map<std::string, std::string> images_;
  std::map<std::uint64_t, std::string> ends_;  ///< where records begin, and their keys
  std::uint64_t end_ = 0;
  std::string data_;
  std::string index_bytes_;
};

TEST_F(Repair, OfAnyFlippedByteLosesNoOtherImage) {
  std::mt19937 random(3);
  int tries = 0;
  for (std::size_t at = 0; at < data_.size() + index_bytes_.size(); ++at) {
    const bool is_header = at < 32 || (at >= data_.size() && at < data_.size() + 32);
    const char masks[] = {static_cast<char>(1 + random() % 255), '\x01', '\x80', '\xFF'};
    for (int i = 0; i < (is_header ? 4 : 1); ++i, ++tries) {
      SCOPED_TRACE(std::to_string(at) + " ^ " + std::to_string(masks[i]));
      std::string both = data_ + index_bytes_;
      both[at] = static_cast<char>(both[at] ^ masks[i]);
      Place(both.substr(0, data_.size()), both.substr(data_.size()));
      ASSERT_TRUE(RepairStorage(path_.c_str()).repaired);
      ExpectWhole([&](const std::string& key) { return key == KeyAt(at); });
      if (tries % 64 == 0) Compact();
      if (HasFatalFailure()) return;
    }
  }
  EXPECT_GT(tries, 4000);
}

TEST_F(Repair, OfCutFilesKeepsWhatIsThere) {
  for (std::size_t size = 0; size < data_.size(); size += 7) {
    SCOPED_TRACE(size);
    Place(data_.substr(0, size), index_bytes_);
    const auto report = RepairStorage(path_.c_str());
    ASSERT_EQ(report.is_beyond_repair, size < 284);
    if (report.is_beyond_repair) {
      const std::string aside = vdstomgr::SetStorageAside(path_.c_str());
      ASSERT_EQ(Read(aside), data_.substr(0, size));
      EXPECT_FALSE(std::filesystem::exists(path_) || std::filesystem::exists(index_));
      continue;
    }
    ExpectWhole([&](const std::string& key) {
      for (auto it = ends_.begin(); it != ends_.end(); ++it) {
        const auto end = std::next(it) == ends_.end() ? end_ : std::next(it)->first;
        if (it->second == key && end <= size) return false;
      }
      return true;
    });
  }
  for (std::size_t size = 0; size < index_bytes_.size(); size += 13) {
    Place(data_, index_bytes_.substr(0, size));
    ASSERT_TRUE(RepairStorage(path_.c_str()).repaired);
    ExpectWhole([](auto&) { return false; });
  }
}

#if defined(_WIN32)
NOT_ON_WINDOWS(Repair, OfWhatAKilledProcessHasLeft, "forks at each call; Crash kills there too")
#else
/// Each call of a compaction and of a repair is the last one of a process once.
TEST_F(Repair, OfWhatAKilledProcessHasLeft) {
  std::string damaged = data_;
  damaged[300] = static_cast<char>(damaged[300] ^ 1);
  for (const bool repairs : {false, true}) {
    bool died = true;
    for (int call = 1; died; ++call) {
      SCOPED_TRACE((repairs ? "repair " : "compaction ") + std::to_string(call));
      Place(repairs ? damaged : data_, index_bytes_);
      died = Run([&] {
               vdstomgr::os::FaultyFiles files;
               files.DieAt(call);
               return repairs ? RepairStorage(path_.c_str()).repaired
                              : CRkStorageManager::CompactStorageFile(path_.c_str());
             }) == 9;
      const auto may_be_gone = [&](const std::string& key) { return repairs && key == KeyAt(300); };
      for (const auto& [key, data] : images_) {
        CBinData image;
        const auto answer = vdstomgr::ReadStorage(path_.c_str(), key.c_str(), image);
        ASSERT_TRUE(repairs || answer == vdstomgr::StorageLookup::Found) << key;
      }
      ASSERT_TRUE(vdstomgr::FinishCompaction(path_.c_str()));
      EXPECT_FALSE(std::filesystem::exists(path_ + ".compacting.pdb"));
      ASSERT_TRUE(!repairs || RepairStorage(path_.c_str()).repaired);
      ExpectWhole(may_be_gone);
      if (call % 8 == 0) Compact();
      if (HasFatalFailure()) return;
    }
  }
}
#endif

}  // namespace
