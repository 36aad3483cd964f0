#if defined(__linux__)
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <cstring>

#include "tests/storage/record_test.h"
#include "vdstomgr/storage/file_mapper.h"

namespace {

constexpr int kNoSmallDisk = 77;

bool WriteText(const char* path, const std::string& text) {
  const int file = open(path, O_WRONLY);
  const bool done = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  return close(file) == 0 && done;
}

/// Mounts a file system of a few MiB that no other process sees.
bool MountSmallDisk(const std::string& folder, int mib) {
  const std::string user = "0 " + std::to_string(getuid()) + " 1";
  const std::string size = "size=" + std::to_string(mib) + "m";
  const bool is_own = unshare(CLONE_NEWNS) == 0 || (unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 &&
                                                    WriteText("/proc/self/uid_map", user));
  return is_own && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         mount("tmpfs", folder.c_str(), "tmpfs", 0, size.c_str()) == 0;
}

/// What a full disk does; a write into a page without space would end the process.
class DiskSpace : public Records {
 protected:
  std::uint64_t SpaceOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return static_cast<std::uint64_t>(status.st_blocks) * 512;
  }
  /// Whether all expectations of `work`, done in another process on a disk of some MiB, hold.
  void OnADiskOf(int mib, const std::function<void()>& work) {
    const auto folder = std::filesystem::path(path_).parent_path().string();
    const int result = Run([&] {
      if (!MountSmallDisk(folder, mib)) _exit(kNoSmallDisk);
      work();
      return !HasFailure();
    });
    if (result == kNoSmallDisk) GTEST_SKIP() << "this process may not mount a small disk";
    EXPECT_EQ(result, 0);
  }
};

TEST_F(DiskSpace, IsTakenAsItIsNeeded) {
  Make(kText, 44);
  for (int i = 0; i < 6; ++i) ASSERT_TRUE(Put(std::to_string(i), std::string(50000, 'x')));
  EXPECT_EQ(std::filesystem::file_size(path_), 104857600U);
  EXPECT_LT(SpaceOf(path_) + SpaceOf(index_), 5U << 20);
  ASSERT_TRUE(Put("large", std::string(30 << 20, 'x')));
  EXPECT_LT(SpaceOf(path_), 33U << 20);
}

TEST_F(DiskSpace, ThatIsUsedUpIsAFalse) {
  OnADiskOf(9, [&] {
    const std::string data(300000, 'x');
    Make(kText, 44);
    int count = 0;
    while (Put(std::to_string(count), data)) ++count;
    EXPECT_GT(count, 10);
    EXPECT_EQ(storage_.GetSize(), count);
    EXPECT_TRUE(storage_.RemoveAt(storage_.FindString("3", true)));
    EXPECT_FALSE(storage_.CompactStorageFileOnline(path_.c_str(), 0));
    EXPECT_TRUE(storage_.SortStorageCluster());
    storage_.FreeStorageFile();
    ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str()));
    for (int i = 0; i < count; ++i) EXPECT_EQ(Find(std::to_string(i)), i == 3 ? "-" : data);
  });
}

TEST_F(DiskSpace, OfAWindowIsThereBeforeItIsGiven) {
  OnADiskOf(5, [&] {
    CRkFileMapper mapper;
    ASSERT_TRUE(mapper.OpenFile(Write("a", "x").c_str()));
    ASSERT_TRUE(mapper.SetFileSize(2) && mapper.CreateMap(0, ""));
    EXPECT_EQ(mapper.LockFile(0, 0), nullptr);
    std::memset(mapper.LockFile(10, 2000000), 'y', 2000000);
    EXPECT_TRUE(mapper.UnlockFile());
    EXPECT_TRUE(mapper.WriteFileData(50 << 20, kBytes, 3));
    EXPECT_FALSE(mapper.WriteFileData(70 << 20, kBytes, 3));
    std::memset(mapper.LockFile(0, 1 << 20), 'z', 1 << 20);  // the map is still there
    EXPECT_TRUE(mapper.CloseFile());
    std::filesystem::remove(Path("a"));
    ASSERT_TRUE(CRkFileArrayManager::CreateFileArray(Path("b").c_str(), 1, 1000));
    CRkFileArrayManager array;
    ASSERT_TRUE(array.OpenFile(Path("b").c_str()));
    EXPECT_EQ(array.GetArray(6000), nullptr);
    array.ReleaseArray(false);
    EXPECT_EQ(array.GetSize(), 0);
    std::memset(array.GetArray(3000), 'u', 3000 * 1000);
    array.ReleaseArray(true);
  });
}

/// Files that were copied without the zeros in them.
TEST_F(DiskSpace, OfHolesIsTakenWhenTheFileIsOpened) {
  Make(kText, 4);
  const std::string zeros(6 << 20, '\0');
  ASSERT_TRUE(Put("a", zeros) && Put("b", "x"));
  storage_.FreeStorageFile();
  const std::string data = Read(path_).substr(0, 284 + 2 * 18 + zeros.size() + 1);
  const std::string index = Read(index_).substr(0, 32 + 2 * 22);
  const auto copy = [&] {
    std::ofstream file(path_, std::ios::binary);
    file.write(data.data(), 400);
    file.seekp(static_cast<std::streamoff>(data.size() - 400));
    file.write(data.data() + data.size() - 400, 400);
    Write("r.pdx", index);
  };
  OnADiskOf(20, [&] {
    copy();
    EXPECT_LT(SpaceOf(path_), 1U << 20);
    ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str()));
    EXPECT_GT(SpaceOf(path_), 6U << 20);
    EXPECT_TRUE(Put("c", "x") && storage_.RemoveAt(0));
  });
  OnADiskOf(5, [&] {
    copy();
    EXPECT_FALSE(storage_.LoadStorageFile(path_.c_str()) || storage_.IsFileOpened());
  });
}

}  // namespace
#endif
