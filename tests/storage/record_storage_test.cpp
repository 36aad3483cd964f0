#include "tests/storage/faulty_environment.h"
#include "tests/storage/record_test.h"
#include "vdstomgr/storage/array_file.h"
#include "vdstomgr/storage/repair_storage.h"
#include "vdstomgr/storage/sync_storage.h"
#include "vdstomgr/storage/verify_storage.h"

namespace {

TEST_F(Records, StandInTheFilesByteForByte) {
  const std::string zeros(252, '\0');
  ASSERT_TRUE(CRkStorageManager::CreateStorageFile(path_.c_str(), 7, kText, 4));
  EXPECT_EQ(Read(path_).size(), 284U);
  EXPECT_EQ(Read(index_).size(), 32U);
  ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str(), 2, 3));
  EXPECT_EQ(storage_.GetSize(), 0);
  EXPECT_EQ(storage_.GetStorageID(), 7U);
  ASSERT_TRUE(Put("ab", "hi!"));
  ASSERT_TRUE(Put("c", ""));
  ASSERT_TRUE(storage_.RemoveAt(storage_.FindString("C", true)));
  const std::string data = Read(path_);
  EXPECT_EQ(data.size(), 104857600U);
  EXPECT_EQ(data.substr(0, 323), Bytes("FF004441543000003031303007000000"
                                       "00000000530004002700000000000000") +
                                     zeros +
                                     Bytes("FF11150000003A83D341616200000000"
                                           "68692100FF"
                                           "FF221200000000000000630000000000"
                                           "00FF"));
  const std::string index = Read(index_);
  EXPECT_EQ(index.size(), 10485760U);
  EXPECT_EQ(index.substr(0, 54), Bytes("FB004152524159003031303007000000"
                                       "16000000000000001600000000000000"
                                       "6162000000003A83D341000000000000"
                                       "000015000000"));
}

TEST_F(Records, TakeKeysOfTheirKindOnly) {
  Make(kNumber, 4);
  ASSERT_TRUE(storage_.Add(5, kBytes, 3, true));
  EXPECT_FALSE(Put("5", "x") || storage_.RemoveAll());
  EXPECT_EQ(storage_.FindString("5", true), 0);
  EXPECT_EQ(storage_.FindStringAt("5", true), 0);
  ASSERT_TRUE(storage_.Add(0x80000001, kBytes, 0, true));
  EXPECT_EQ(storage_.FindDWORD(0x80000001, true), 1);  // 5 - 0x80000001 is below 0 as an int
  EXPECT_EQ(storage_.GetKeyAtDWORD(1), 0x80000001);
  Make(kNumber, 2);
  EXPECT_FALSE(storage_.Add(5, kBytes, 3, true));
  Make(kText, 4);
  EXPECT_FALSE(storage_.Add(5, kBytes, 3, true));
  EXPECT_FALSE(storage_.Add("a", kBytes, -1, true) || storage_.Add("a", nullptr, 1, true));
  EXPECT_FALSE(storage_.Add(nullptr, kBytes, 1, true));
  EXPECT_EQ(storage_.FindDWORD(5, true), 0);
  ASSERT_TRUE(Put("LONGER", "x"));
  EXPECT_EQ(storage_.FindString("longest", true), 0);  // four bytes count
  EXPECT_EQ(storage_.FindStringAt("longe", true), -1);
  EXPECT_EQ(storage_.FindStringAt("lo", true), 0);
  CString key;
  EXPECT_EQ(storage_.GetKeyAtString(0, key), 4);
  EXPECT_EQ(key, "LONG");
  EXPECT_FALSE(CRkStorageManager::CreateStorageFile(Path("nopoint").c_str(), 1, kText, 4));
  EXPECT_EQ(Read(Path("nopoint")), "");
}

TEST_F(Records, AnswerWithNothingWhenThereIsNothing) {
  int length = -7;
  EXPECT_EQ(storage_.FindString("a", true), 0);  // no file: no kind of keys
  EXPECT_FALSE(Put("a", "x") || storage_.SortStorageCluster() || vdstomgr::SyncStorage(storage_));
  for (const bool is_empty : {false, true}) {
    if (is_empty) Write("r.pdb", "");
    EXPECT_FALSE(storage_.LoadStorageFile(path_.c_str(), 2, 3) || storage_.IsFileOpened());
    EXPECT_THAT(TakeTraces().back(), testing::StartsWith("CRkStorageManager::LoadStorageFile >> "));
    EXPECT_EQ(TakeBoxes().size(), is_empty ? 0U : 1U);
  }
  Make(kText, 4);
  EXPECT_EQ(storage_.GetBuffer(-1, length), nullptr);
  EXPECT_EQ(length, -7);
  storage_.ReleaseBuffer();
  EXPECT_EQ(storage_.GetBuffer(0, length), nullptr);
  EXPECT_EQ(length, 0);
  storage_.ReleaseBuffer();
  EXPECT_FALSE(storage_.RemoveAt(0) || storage_.RemoveAt(-1));
  storage_.FreeStorageFile();
  std::filesystem::remove(index_);
  EXPECT_FALSE(storage_.LoadStorageFile(path_.c_str(), 2, 3));
  EXPECT_TRUE(storage_.IsFileOpened());  // without an index nothing can be done but to close it
  EXPECT_FALSE(Put("a", "x") || storage_.CompactStorageFileOnline(path_.c_str(), 0));
  EXPECT_TRUE(std::filesystem::exists(path_));
}

TEST_F(Records, AreHeldOneAtATimeAndSharedByCopies) {
  Make(kText, 4);
  CRkStorageManager copy(storage_);
  ASSERT_TRUE(Put("a", "one") && Put("b", "two"));
  int length = 0;
  ASSERT_NE(copy.GetBuffer(0, length), nullptr);
  EXPECT_TRUE(storage_.IsStorageLocked());
  EXPECT_FALSE(Put("c", "x") || storage_.RemoveAt(1));
  EXPECT_FALSE(storage_.CompactStorageFileOnline(path_.c_str(), 0));
  storage_.Flush();
  copy.ReleaseBuffer();
  EXPECT_FALSE(storage_.IsStorageLocked());
  EXPECT_EQ(Take(1), "two");
  copy.FreeStorageFile();
  EXPECT_FALSE(storage_.IsFileOpened());
}

TEST_F(Records, LoseTheRemovedOnesAndTheirOrderInACompaction) {
  Make(kText, 4);
  for (const char* key : {"c", "a", "b"}) ASSERT_TRUE(Put(key, key));
  ASSERT_TRUE(storage_.RemoveAt(1));
  EXPECT_TRUE(storage_.CompactStorageFileOnline(path_.c_str(), 3));  // too few: nothing happens
  EXPECT_EQ(Read(path_)[284 + 10], 'c');
  storage_.FreeStorageFile();
  const std::string old = Read(path_);
  Write("r.pdb.bak", "older");
  ASSERT_TRUE(CRkStorageManager::CompactStorageFile(path_.c_str()));
  const std::string data = Read(path_);
  EXPECT_EQ(data[24], 2 * 19);
  EXPECT_EQ(data[284 + 10], 'a');
  EXPECT_EQ(data[284 + 19 + 10], 'c');
  EXPECT_EQ(Read(path_ + ".bak"), old);
  for (const std::string& backup : {path_ + ".bak", index_ + ".bak"}) {
    ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str(), 2, 3));
    EXPECT_FALSE(storage_.CompactStorageFileOnline(path_.c_str(), 0));  // it is in the way
    EXPECT_FALSE(storage_.IsFileOpened() || std::filesystem::exists(path_ + ".compacting.pdb"));
    EXPECT_TRUE(std::filesystem::remove(backup));
  }
  ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str(), 2, 3));
  EXPECT_TRUE(storage_.CompactStorageFileOnline(path_.c_str(), 0));
  EXPECT_FALSE(std::filesystem::exists(path_ + ".bak"));
  EXPECT_EQ(Take(0), "a");
}

/// Every call of the file system fails, alone or with all that follow: an add that answers false
/// has added nothing, and what was there stays.
TEST_F(Records, SurviveEveryFailureOfTheFileSystem) {
  FaultyFiles files;
  bool ran_clean = false;
  for (int call = 1; !ran_clean && call < 200; ++call) {
    SCOPED_TRACE(call);
    files.Heal();
    Make(kText, 4);
    ASSERT_TRUE(Put("a", "one"));
    storage_.FreeStorageFile();
    std::filesystem::resize_file(path_, 284 + 4 + 3 + 14);
    files.FailAt(call, call % 2 == 0);
    const bool loaded = storage_.LoadStorageFile(path_.c_str(), 2, 3);
    const bool added = loaded && Put("b", "two");
    const bool removed = loaded && storage_.RemoveAt(storage_.FindString("a", true));
    if (loaded) storage_.CompactStorageFileOnline(path_.c_str(), 0);
    storage_.FreeStorageFile();
    ran_clean = !files.HasFailed();
    files.Heal();
    if (!std::filesystem::exists(path_) || !std::filesystem::exists(index_)) {
      ASSERT_TRUE(vdstomgr::RepairStorage(path_.c_str()).repaired);
    }
    for (const std::string& file : {path_, index_}) std::filesystem::remove(file + ".bak");
    ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str(), 2, 3));
    EXPECT_EQ(storage_.FindString("b", true) != -1, added);
    EXPECT_EQ(storage_.FindString("a", true) != -1, !removed);
    const auto report = vdstomgr::VerifyStorage(path_.c_str());
    EXPECT_TRUE(report.is_sound) << report.findings.front().text;
    TakeBoxes();
  }
  EXPECT_TRUE(ran_clean);
}

/// After a power cut there is what SyncStorage has acknowledged.
TEST_F(Records, AreSafeFromAPowerCutOnceSynced) {
  FaultyFiles files;
  Make(kText, 4);
  for (const char* key : {"c", "a", "b"}) ASSERT_TRUE(Put(key, key));
  ASSERT_TRUE(vdstomgr::SyncStorage(storage_));
  ASSERT_TRUE(Put("d", "lost"));
  storage_.FreeStorageFile();
  files.LoseUnsynced();
  ASSERT_TRUE(storage_.LoadStorageFile(path_.c_str(), 2, 3));
  EXPECT_EQ(storage_.GetSize(), 3);
  EXPECT_EQ(Take(1), "b");
}

}  // namespace
