#if !defined(_WIN32)
#include <poll.h>
#include <signal.h>
#endif

#include <chrono>
#include <cstdlib>
#include <thread>

#include "tests/storage/storage_test.h"
#include "tests/system.h"
#include "vdstomgr/storage/array_file.h"
#include "vdstomgr/storage/read_storage.h"
#include "vdstomgr/storage/record_storage.h"

namespace {

using vdstomgr::StorageLookup;

class Processes : public StorageTest {};

std::string KeyOf(int number) {
  return std::to_string(100 + number);
}

/// Moves clusters, removes records and compacts all the time.
[[noreturn]] void WriteRecords(const std::string& path, const std::string& ready) {
  CRkStorageManager storage;
  const auto put = [&](const std::string& key) {
    const std::string data = std::string(5000, 'x') + key;
    return storage.Add(key.c_str(), reinterpret_cast<const BYTE*>(data.data()), 5003, true);
  };
  if (!storage.LoadStorageFile(path.c_str())) std::_Exit(1);
  for (int i = 0; i < 200; ++i) put(KeyOf(i));
  std::ofstream(ready).flush();
  for (;;) {
    for (int i = 0; i < 100; ++i) put("0" + std::to_string(i % 10));
    storage.SortStorageCluster();
    for (int i = 0; i < 100; ++i) storage.RemoveAt(0);
    if (!storage.CompactStorageFileOnline(path.c_str(), 0)) std::_Exit(2);
  }
}

/// Readers are let in; a second writer is refused.
TEST_F(Processes, AnotherOneFindsRecordsWhileTheyMove) {
  const std::string path = Path("s.pdb");
  if (ChildProcess::Order() != nullptr) WriteRecords(path, Path("ready"));
  ASSERT_TRUE(CRkStorageManager::CreateStorageFile(path.c_str(), 1, 'S', 4));
  ChildProcess writer("write");
  for (int i = 0; i < 60'000 && !std::filesystem::exists(Path("ready")); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  EXPECT_FALSE(CRkStorageManager().LoadStorageFile(path.c_str()));
  CBinData data;
  for (int i = 0; i < 1000; ++i) {
    const std::string key = KeyOf(i % 200);
    ASSERT_EQ(vdstomgr::ReadStorage(path.c_str(), key.c_str(), data), StorageLookup::Found) << i;
    ASSERT_EQ(std::string(data.begin(), data.end()), std::string(5000, 'x') + key);
  }
  EXPECT_EQ(vdstomgr::ReadStorage(path.c_str(), "none", data), StorageLookup::NoRecord);
  EXPECT_EQ(vdstomgr::ReadStorage(path.c_str(), DWORD{5}, data), StorageLookup::Unreadable);
  EXPECT_TRUE(writer.Kill());
}

#if defined(_WIN32)
using ArrayProcesses = StorageTest;
NOT_ON_WINDOWS(ArrayProcesses, AKillLosesNothingThatWasAcknowledged,
               "the child forks; kills of storages and libraries are tested there too")
#else
constexpr int kUnitSize = 100;

std::string UnitOf(int number) {
  return std::string(kUnitSize, static_cast<char>('a' + number % 26));
}

class ArrayProcesses : public StorageTest {
 protected:
  ArrayProcesses() { EXPECT_EQ(pipe(ends_), 0); }
  ~ArrayProcesses() override {
    for (const int end : ends_) close(end);
  }
  static void Kill(pid_t process) {
    EXPECT_EQ(kill(process, SIGKILL), 0);
    int status = 0;
    waitpid(process, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));  // it did not end by itself
  }
  /// An array file without units.
  std::string NewArray(const std::string& name) const {
    EXPECT_TRUE(CRkFileArrayManager::CreateFileArray(Path(name).c_str(), 1, kUnitSize));
    return Path(name);
  }
  int ends_[2];
};

/// Adds at both ends and removes the last; the numbers of those that must be there go through a
/// pipe.
TEST_F(ArrayProcesses, AKillLosesNothingThatWasAcknowledged) {
  for (int round = 0; round < 60; ++round) {
    const std::string path = NewArray(std::to_string(round));
    const pid_t writer = Start([&] {
      CRkFileArrayManager array;
      if (!array.OpenFile(path.c_str())) return false;
      for (int i = 0;; ++i) {
        const std::string unit = UnitOf(i);
        if (!(i % 3 == 0 ? array.InsertAt(0, unit.data()) : array.Add(unit.data()))) return false;
        if (i == 1000) array.RemoveAt(array.GetSize() - 1), i = 0;
        if (write(ends_[1], &i, sizeof i) != sizeof i) return false;
      }
    });
    int last = 0;
    for (int acknowledged = 0; acknowledged < 20 + 13 * round; ++acknowledged) {
      ASSERT_EQ(read(ends_[0], &last, sizeof last), static_cast<ssize_t>(sizeof last));
    }
    Kill(writer);
    for (pollfd end{ends_[0], POLLIN, 0}; poll(&end, 1, 0) == 1;) {
      if (read(ends_[0], &last, sizeof last) <= 0) break;
    }
    CRkFileArrayManager array;
    ASSERT_TRUE(array.OpenFile(path.c_str()));
    ASSERT_GE(array.GetSize(), std::min(last + 1, 900));
    const std::string units(static_cast<const char*>(array.GetArrayPtr()),
                            static_cast<std::size_t>(array.GetSize()) * kUnitSize);
    for (int letter = 0; letter < std::min(last + 1, 26); ++letter) {
      EXPECT_NE(units.find(UnitOf(letter)), std::string::npos) << letter << " of " << last;
    }
  }
}

#endif

}  // namespace
