#include "vdstomgr/storage/storage_snapshot.h"

#include "tests/storage/record_test.h"

namespace {

using vdstomgr::StorageSnapshot;

class Snapshots : public Records {
 protected:
  Snapshots() { Make(kText, 8); }

  static std::string DataOf(int number, char fill) {
    return std::string(static_cast<std::size_t>(number) * 37 % 5000, fill);
  }
  /// Copies the storage to "copy.pdb"; `disturb` runs when the first bytes are there.
  void Copy(const std::function<void()>& disturb, bool is_whole = true) {
    StorageSnapshot snapshot(path_.c_str());
    ASSERT_TRUE(snapshot.IsReadable());
    std::string data, index;
    const auto to = [&](std::string& text) {
      return [&](const void* bytes, std::size_t size) {
        if (text.empty() && &text == &data) disturb();
        text.append(static_cast<const char*>(bytes), size);
      };
    };
    EXPECT_EQ(snapshot.CopyData(to(data)), is_whole);
    snapshot.CopyIndex(to(index));
    storage_.FreeStorageFile();  // which may be the copy before this one
    Write("copy.pdb", data);
    Write("copy.pdx", index);
    EXPECT_TRUE(!is_whole || storage_.LoadStorageFile(Path("copy.pdb").c_str(), 2, 3));
  }
};

/// Keys are stored in no order; each third record is removed before, each fourth meanwhile.
TEST_F(Snapshots, AreTheStorageAsItWasWhateverItsWriterDoes) {
  constexpr int kRecords = 2000;
  const auto key = [](int i) { return std::to_string(i * 7919 % kRecords); };
  const auto remove = [&](int i) {
    EXPECT_TRUE(storage_.RemoveAt(storage_.FindString(key(i).c_str(), true)));
  };
  for (int i = 0; i < kRecords; ++i) EXPECT_TRUE(Put(key(i), DataOf(i, 'a'), false));
  for (int i = 0; i < kRecords; i += 3) remove(i);
  Copy([&] {
    for (int i = 0; i < kRecords; i += 4) {
      if (i % 3 != 0) remove(i);
      EXPECT_TRUE(Put(key(i), DataOf(i, 'b')));
    }
    storage_.FreeStorageFile();
    ASSERT_TRUE(CRkStorageManager::CompactStorageFile(path_.c_str()));
  });
  const auto report = vdstomgr::VerifyStorage(Path("copy.pdb").c_str());
  EXPECT_TRUE(report.is_sound && report.finding_count == 0) << report.finding_count;
  EXPECT_EQ(storage_.GetSize(), kRecords - (kRecords + 2) / 3);
  for (int i = 0; i < kRecords; ++i) {
    const int position = storage_.FindString(key(i).c_str(), true);
    ASSERT_EQ(position >= 0, i % 3 != 0) << i;
    EXPECT_EQ(position < 0 ? DataOf(i, 'a') : Take(position), DataOf(i, 'a')) << i;
  }
}

TEST_F(Snapshots, NameWhatALostOrForeignIndexDoesNot) {
  for (const char* k : {"a", "b", "c"}) EXPECT_TRUE(Put(k, k));
  storage_.FreeStorageFile();
  const std::string index = Read(index_);
  for (const std::string& present : {std::string(), std::string("no index"), index.substr(0, 40)}) {
    Write("r.pdx", present);
    Copy([] {});
    EXPECT_EQ(Find("a") + Find("b") + Find("c"), "abc");
  }
  constexpr std::uint64_t kSecond = 284 + 23 + 20;  // the second record's data
  const char flipped = static_cast<char>(Read(path_)[kSecond] ^ 1);
  std::unique_ptr<vdstomgr::os::File> file;
  ASSERT_FALSE(vdstomgr::os::SystemFiles().Open(path_, vdstomgr::os::OpenMode::read_write, file));
  ASSERT_FALSE(file->WriteAt(kSecond, &flipped, 1));
  file.reset();
  Write("r.pdx", index);
  Copy([] {});
  EXPECT_EQ(vdstomgr::VerifyStorage(Path("copy.pdb").c_str()).damaged_records, 1u);
  EXPECT_EQ(Find("a") + Find("c"), "ac");
}

TEST_F(Snapshots, TellOfAStorageThatIsEmptiedAndOfNone) {
  for (const char* k : {"a", "b", "c"}) EXPECT_TRUE(Put(k, k));
  Copy([&] { EXPECT_TRUE(storage_.RemoveAll()); }, false);
  EXPECT_FALSE(StorageSnapshot(Path("none.pdb").c_str()).IsReadable());
}

}  // namespace
