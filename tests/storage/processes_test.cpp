#if !defined(_WIN32)
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <functional>

#include "tests/storage/storage_test.h"
#include "vdstomgr/storage/array_file.h"
#include "vdstomgr/storage/read_storage.h"
#include "vdstomgr/storage/record_storage.h"

namespace {

using vdstomgr::StorageLookup;

constexpr int kUnitSize = 100;

std::string UnitOf(int number) {
  return std::string(kUnitSize, static_cast<char>('a' + number % 26));
}

class Processes : public StorageTest {
 protected:
  Processes() : path_(Path("a")) {
    EXPECT_TRUE(CRkFileArrayManager::CreateFileArray(path_.c_str(), 1, kUnitSize));
  }
  /// Runs in a process of its own, which ends without any clean-up.
  static pid_t Start(const std::function<bool()>& work) {
    const pid_t process = fork();
    if (process == 0) _exit(work() ? 0 : 1);
    return process;
  }
  static bool Run(const std::function<bool()>& work) {
    int status = 1;
    waitpid(Start(work), &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }
  std::string path_;
};

TEST_F(Processes, AnotherOneMayReadAndNotWrite) {
  CRkFileArrayManager array;
  ASSERT_TRUE(array.OpenFile(path_.c_str()));
  ASSERT_TRUE(array.Add(UnitOf(3).data()));
  EXPECT_TRUE(Run([&] {
    CRkFileArrayManager second;
    return !second.OpenFile(path_.c_str()) && Read(path_).substr(32, kUnitSize) == UnitOf(3);
  }));
  array.CloseFile();
  EXPECT_TRUE(Run([&] {
    CRkFileArrayManager second;
    return second.OpenFile(path_.c_str()) && second.Add(UnitOf(4).data());
  }));
}

/// The writer moves clusters, removes records and compacts all the time.
TEST_F(Processes, AnotherOneFindsRecordsWhileTheyMove) {
  const std::string path = Path("s.pdb");
  ASSERT_TRUE(CRkStorageManager::CreateStorageFile(path.c_str(), 1, 'S', 4));
  const auto key_of = [](int i) { return std::to_string(100 + i); };
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const pid_t writer = Start([&] {
    CRkStorageManager storage;
    const auto put = [&](const std::string& key) {
      const std::string data = std::string(5000, 'x') + key;
      return storage.Add(key.c_str(), reinterpret_cast<const BYTE*>(data.data()), 5003, true);
    };
    if (!storage.LoadStorageFile(path.c_str())) return false;
    for (int i = 0; i < 200; ++i) put(key_of(i));
    if (write(ends[1], "", 1) != 1) return false;
    for (int round = 0;; ++round) {
      for (int i = 0; i < 100; ++i) put("0" + std::to_string(i % 10));
      storage.SortStorageCluster();
      for (int i = 0; i < 100; ++i) storage.RemoveAt(0);
      if (!storage.CompactStorageFileOnline(path.c_str(), 0)) return false;
    }
  });
  char ready;
  ASSERT_EQ(read(ends[0], &ready, 1), 1);
  CBinData data;
  for (int i = 0; i < 1000; ++i) {
    const std::string key = key_of(i % 200);
    ASSERT_EQ(vdstomgr::ReadStorage(path.c_str(), key.c_str(), data), StorageLookup::Found) << i;
    ASSERT_EQ(std::string(data.begin(), data.end()), std::string(5000, 'x') + key);
  }
  EXPECT_EQ(vdstomgr::ReadStorage(path.c_str(), "none", data), StorageLookup::NoRecord);
  EXPECT_EQ(vdstomgr::ReadStorage(path.c_str(), DWORD{5}, data), StorageLookup::Unreadable);
  EXPECT_EQ(kill(writer, SIGKILL), 0);
  int status = 0;
  waitpid(writer, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status));
}

TEST_F(Processes, ALimitOnTheSizeIsAFalse) {
  EXPECT_TRUE(Run([&] {
    const rlimit limit{5 << 20, 5 << 20};
    CRkFileArrayManager array;
    return setrlimit(RLIMIT_FSIZE, &limit) == 0 && array.OpenFile(path_.c_str()) &&
           !array.Add(UnitOf(1).data()) && array.GetSize() == 0;
  }));
  EXPECT_EQ(std::filesystem::file_size(path_), 32u);
}

/// Adds at both ends and removes the oldest; the numbers of those that must be there go through a
/// pipe.
TEST_F(Processes, AKillLosesNothingThatWasAcknowledged) {
  for (int round = 0; round < 60; ++round) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t writer = Start([&] {
      CRkFileArrayManager array;
      if (!array.OpenFile(path_.c_str())) return false;
      array.RemoveAll();
      for (int i = 0;; ++i) {
        if (!(i % 3 == 0 ? array.InsertAt(0, UnitOf(i).data()) : array.Add(UnitOf(i).data())))
          return false;
        if (i == 1000) array.RemoveAt(array.GetSize() - 1), i = 0;
        if (write(ends[1], &i, sizeof i) != sizeof i) return false;
      }
    });
    int last = 0;
    for (int acknowledged = 0; acknowledged < 20 + 13 * round; ++acknowledged) {
      ASSERT_EQ(read(ends[0], &last, sizeof last), static_cast<ssize_t>(sizeof last));
    }
    kill(writer, SIGKILL);
    waitpid(writer, nullptr, 0);
    close(ends[1]);
    while (read(ends[0], &last, sizeof last) > 0) {
    }
    close(ends[0]);
    CRkFileArrayManager array;
    ASSERT_TRUE(array.OpenFile(path_.c_str()));
    ASSERT_GE(array.GetSize(), std::min(last + 1, 900));
    std::string units(static_cast<const char*>(array.GetArrayPtr()),
                      static_cast<std::size_t>(array.GetSize()) * kUnitSize);
    for (int letter = 0; letter < std::min(last + 1, 26); ++letter) {
      EXPECT_NE(units.find(UnitOf(letter)), std::string::npos) << letter << " of " << last;
    }
  }
}

}  // namespace
#endif
