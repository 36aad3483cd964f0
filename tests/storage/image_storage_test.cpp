#include "vdstomgr/storage/image_storage.h"

#include <atomic>
#include <thread>

#include "tests/storage/faulty_environment.h"
#include "tests/storage/storage_test.h"
#include "vdstomgr/storage/record_storage.h"
#include "vdstomgr/storage/sync_storage.h"

namespace {

const std::string kGuid = "01234567-89ab-cdef-0123-456789abcdef";

class Images : public StorageTest {
 protected:
  Images() {
    EXPECT_TRUE(images_.CreateFileA(path_.c_str(), 3));
    EXPECT_TRUE(images_.OpenFile(path_.c_str()));
  }
  bool Set(const std::string& key, const std::string& data, bool replace) {
    return images_.SetImage(key.c_str(), reinterpret_cast<const BYTE*>(data.data()),
                            static_cast<int>(data.size()), replace);
  }
  static std::string TextOf(const CBinData& data) { return {data.begin(), data.end()}; }
  std::string Get(const std::string& key) {
    CBinData data;
    return images_.GetImage(key.c_str(), data) ? TextOf(data) : "-";
  }

  std::string path_ = Path("images.pdb");
  CRkPhotoImageStorage images_;
};

TEST_F(Images, AreOnePerKeyWhenReplaced) {
  EXPECT_TRUE(Set(kGuid, "one", true) && Set(kGuid, "two", true));
  EXPECT_EQ(images_.GetSize(), 1);
  EXPECT_EQ(Get(kGuid) + Get("no such"), "two-");
  EXPECT_TRUE(Set("x", "1", false) && Set("X", "2", false));
  EXPECT_TRUE(Set("x", "3", true));  // in the place of one of the two
  EXPECT_EQ(images_.GetSize(), 3);
  EXPECT_EQ(Get("x"), "3");
  EXPECT_TRUE(images_.DelImage("x"));
  EXPECT_FALSE(images_.IsImage("x") || images_.IsImage(nullptr));
  EXPECT_FALSE(Set("", "", true) && Get("") != "-");  // stored, and empty
  EXPECT_FALSE(images_.SetImage(nullptr, nullptr, 0));
  for (const char* key : {"ab", "ABC", "abd1", "b", "a"}) ASSERT_TRUE(Set(key, "x", true));
  EXPECT_TRUE(images_.DelImage("ab"));  // all that begin so
  EXPECT_EQ(images_.GetSize(), 4);
  images_.ResetImage();
  EXPECT_EQ(images_.GetSize(), 0);
  images_.CloseFile();
  EXPECT_FALSE(images_.DelImage("a"));
  const std::string numbers = Path("numbers.pdb");
  ASSERT_TRUE(CRkStorageManager::CreateStorageFile(numbers.c_str(), 3, 'D', 4));
  ASSERT_TRUE(images_.OpenFile(numbers.c_str()));
  EXPECT_FALSE(Set(kGuid, "one", true));  // its keys are numbers
}

TEST_F(Images, ComeFromFilesAndGoToFiles) {
  const std::string file = Write("in.jpg", "picture");
  EXPECT_TRUE(images_.SetImage("k", file.c_str()));
  EXPECT_FALSE(images_.SetImage("k", Path("none.jpg").c_str()));
  EXPECT_TRUE(images_.GetImageToFile("K", Path("out.jpg").c_str()));
  EXPECT_EQ(Read(Path("out.jpg")), "picture");
  EXPECT_FALSE(images_.GetImageToFile("none", Path("none.jpg").c_str()));
  EXPECT_FALSE(std::filesystem::exists(Path("none.jpg")));
}

TEST_F(Images, GiveBackTheirSpace) {
  for (const char* key : {"a", "b", "c"}) ASSERT_TRUE(Set(key, key, true));
  ASSERT_TRUE(images_.DelImage("b"));
  EXPECT_TRUE(images_.ReduceData(3));
  EXPECT_EQ(Read(path_).substr(24, 1), std::string(1, char(3 * 59)));
  EXPECT_TRUE(images_.ReduceData(2));
  EXPECT_EQ(Read(path_).substr(24, 1), std::string(1, char(2 * 59)));
  EXPECT_EQ(Get("a") + Get("b") + Get("c"), "a-c");
  EXPECT_TRUE(vdstomgr::SyncStorage(images_));
  Write("images.pdb.bak", "in the way");
  EXPECT_TRUE(images_.ReduceData(0));  // by design, also when it failed and closed
  EXPECT_EQ(Get("a"), "-");
}

TEST_F(Images, AreLentToOneThread) {
  ASSERT_TRUE(Set("k", "picture", true));
  CBinData data;
  const DWORD handle = images_.Lock_Image("k", data);
  EXPECT_EQ(TextOf(data), "picture");
  std::atomic<bool> has_read = false;
  std::thread other([&] {
    CRkPhotoImageStorage::Free_Image(handle);  // another thread's: nothing happens
    EXPECT_EQ(Get("k"), "picture");
    has_read = true;
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(has_read);
  CRkPhotoImageStorage::Free_Image(handle);
  other.join();
  for (const DWORD stale : {handle, DWORD{0}, handle + 1}) CRkPhotoImageStorage::Free_Image(stale);
  const DWORD none = images_.Lock_Image("none", data);
  const DWORD null = images_.Lock_Image(nullptr, data);
  EXPECT_TRUE(data.IsEmpty() && none != null && none != handle);
  CRkPhotoImageStorage::Free_Image(none);
  CRkPhotoImageStorage::Free_Image(null);
  std::thread([&] { EXPECT_TRUE(Set("after", "x", true)); }).join();
}

TEST_F(Images, StayWhenTheNewOneHasNoRoom) {
  ASSERT_TRUE(Set("k", "old", true));
  images_.CloseFile();
  FaultyFiles files;
  ASSERT_TRUE(images_.OpenFile(path_.c_str()));
  files.FailAt(1, true);
  EXPECT_FALSE(Set("k", std::string(100 << 20, 'x'), true));
  files.Heal();
  EXPECT_EQ(Get("k"), "old");
  EXPECT_EQ(images_.GetSize(), 1);
}

/// Threads on one storage and on storages of their own.
TEST_F(Images, AreSafeInTheHandsOfManyThreads) {
  const auto work = [&](CRkPhotoImageStorage& images, int number) {
    const std::string name = "thread " + std::to_string(number);
    for (int round = 0; round < 200; ++round) {
      const std::string key = name + " " + std::to_string(round % 20);
      const std::string data = key + std::to_string(round);
      CBinData block(reinterpret_cast<const BYTE*>(data.data()), static_cast<DWORD>(data.size()));
      EXPECT_TRUE(images.SetImage(key.c_str(), block, true));
      CBinData lent;
      const DWORD handle = images.Lock_Image(key.c_str(), lent);
      EXPECT_EQ(TextOf(lent), data);
      CRkPhotoImageStorage::Free_Image(handle);
      if (round % 50 == 49) images.ReduceData(0);
      if (round % 20 == 7) images.DelImage(key.c_str());
      images.GetSize();
    }
  };
  std::vector<std::thread> threads;
  for (int number = 0; number < 4; ++number) {
    threads.emplace_back([&, number] {
      work(images_, number);
      const std::string path = Path("own" + std::to_string(number) + ".pdb");
      CRkPhotoImageStorage own;
      ASSERT_TRUE(own.CreateFileA(path.c_str(), 1) && own.OpenFile(path.c_str()));
      work(own, number);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(images_.GetSize(), 4 * 19);
}

}  // namespace
