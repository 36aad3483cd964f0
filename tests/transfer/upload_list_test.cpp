#include <atomic>
#include <mutex>
#include <set>
#include <thread>

#include "upload_test.h"

namespace vdstomgr {
namespace {

using testing::ElementsAre;

/// A record with another value in each field, and as its fields and its row are read.
template <class Record>
Record Distinct() {
  Record record = Upload<Record>("g", 7, "file.JPEG", 1048575);
  CopyToFixed(record.szOPPath, "/k\xb0\xa1");
  record.dxSentBytes = 18446744073709551615u;
  record.byteRotate = 3;
  CopyToFixed(record.szServerPath, "server's");
  record.nThumbStatus = 5;
  CopyToFixed(record.szLTBPath, "ltb");
  CopyToFixed(record.szRPPath, "rp");
  CopyToFixed(record.szExifString, "exif");
  record.byteResume = 9;
  return record;
}
constexpr const char* kFields =
    "g|/k\xb0\xa1|1048575|18446744073709551615|file.JPEG|3|server's|7|0xAC00|5|ltb|rp|exif|9";
constexpr const char* kRow =
    "g|/k\xb0\xa1|1048575|18446744073709551615|1|1|file.JPEG|3|server's|7|5|ltb|rp|exif|9";
const std::string kSelect =
    "SELECT szGUID, szOPPath, dxFileSize, dxSentBytes, byteSmall, byteImage, szFileName, "
    "byteRotate, szServerPath, nStatus, nThumbStatus, szLTBPath, szRPPath, szExifString, "
    "byteResume";

std::string Fields(const QueuedUpload& record) {
  const char* const wide = record.wszOPPath[0] == 0 ? "" : "0xAC00";
  EXPECT_EQ(std::u16string(record.wszOPPath), *wide ? u"/k\xAC00" : u"");
  return Joined(record.szGUID, record.szOPPath, record.dxFileSize, record.dxSentBytes,
                record.szFileName, record.byteRotate, record.szServerPath, record.nStatus, wide,
                record.nThumbStatus, record.szLTBPath, record.szRPPath, record.szExifString,
                record.byteResume);
}

TEST_F(UploadTest, EveryFieldHasItsColumn) {
  const std::string query = kSelect + " FROM UploadList";
  auto record = Distinct<UPLOADLIST>();
  EXPECT_FALSE(catalogue_.AddUploadList(record)) << "on purpose";
  EXPECT_THAT(Ask((query + " WHERE nDispOrder = " + std::to_string(record.nDispOrder)).c_str()),
              ElementsAre(kRow));
  UPLOADLIST read = Upload("x");
  ASSERT_TRUE(catalogue_.GetUploadInfo("g", read));
  EXPECT_EQ(Fields(read), kFields);
  EXPECT_EQ((Answers{read.nID, read.nDispOrder}), Joined(1, record.nDispOrder));
  RunBeside(
      "UPDATE UploadList SET szOPPath = null, dxSentBytes = null, byteSmall = null, "
      "szFileName = null, nThumbStatus = null, byteResume = null, szLTBPath = null");
  ASSERT_TRUE(catalogue_.GetUploadInfo("g", read));
  EXPECT_EQ(Fields(read), "g||1048575|0||3|server's|7||0||rp|exif|0") << "null is empty";
  record.nDispOrder = 77;
  EXPECT_TRUE(catalogue_.SetUploadList(record));
  EXPECT_THAT(Ask((query + " WHERE nDispOrder <> 77").c_str()), ElementsAre(kRow));
  EXPECT_FALSE(catalogue_.SetUploadList(Upload("none")));
  EXPECT_FALSE(catalogue_.GetUploadInfo("none", read));

  UploadListArray all{Upload("before")};
  CDWordArray positions{5, 0, 0, 0xFFFFFFFF};
  EXPECT_EQ(catalogue_.GetUploadListByArray(all, positions), 1);
  EXPECT_EQ(positions, (CDWordArray{0xFFFFFFFF, 0, 0, 5}));
  record.nThumbStatus = 0;
  record.szLTBPath[0] = record.szRPPath[0] = record.szExifString[0] = 0;
  CUtilityLib::MbcsFileToUnicodeFile(record.szOPPath, record.wszOPPath, 260);
  EXPECT_EQ(Fields(all[1]), Fields(record)) << "but for the thumbnail";
  EXPECT_EQ((Answers{all[1].nID, all[1].nDispOrder}), Joined(1, read.nDispOrder));
}

TEST_F(UploadTest, EveryFieldOfTheSyncQueueHasItsColumn) {
  const std::string query = kSelect + ", bOnlyOneTime, bPostEndMsgToSyncDlg FROM SyncUploadList";
  auto record = Distinct<SYNCUPLOADLIST>();
  record.bOnlyOneTime = 1;
  record.bPostEndMsgToSyncDlg = 256 + 2;  // its byte is kept
  EXPECT_FALSE(catalogue_.AddSyncUploadList(record)) << "on purpose";
  EXPECT_THAT(Ask(query.c_str()), ElementsAre(std::string(kRow) + "|1|2"));
  SYNCUPLOADLIST read;
  EXPECT_EQ(Joined(Fields(read), read.nDispOrder, read.bOnlyOneTime), "||0|0||0||0||0||||0|0|0");
  ASSERT_TRUE(catalogue_.GetSyncUploadInfo("g", read));
  EXPECT_EQ(Joined(Fields(read), read.nDispOrder, read.bOnlyOneTime, read.bPostEndMsgToSyncDlg),
            Joined(kFields, record.nDispOrder, "1|2"));
  record.bOnlyOneTime = 0;
  EXPECT_TRUE(catalogue_.SetSyncUploadList(record));
  EXPECT_THAT(Ask(query.c_str()), ElementsAre(std::string(kRow) + "|0|2"));
  EXPECT_FALSE(catalogue_.SetSyncUploadList(Upload<SYNCUPLOADLIST>("none")));
}

/// The process-wide counters begin in a process of its own.
TEST_F(UploadTest, PlacesOfAProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto places_after = [&](const char* queue) {
    Fill(queue);
    RunBeside("INSERT INTO SyncUploadList (nDispOrder) values (3)");
    OpenCatalogue other;
    other.OpenDB(file_.c_str(), "");
    std::string places;
    for (CRkPhotoDBManager* catalogue : {&catalogue_, &other, &catalogue_}) {
      UPLOADLIST row = Upload("g");
      SYNCUPLOADLIST sync = Upload<SYNCUPLOADLIST>("g");
      const bool added = catalogue->AddUploadList(row) || catalogue->AddSyncUploadList(sync);
      places += Joined(added, row.nDispOrder, sync.nDispOrder) + " ";
    }
    const UploadListArray two{Upload("a"), Upload("b")};
    places += Answers{other.AddUploadList(two), other.GetUploadListMaxDispOrder()};
    for (OpenCatalogue* catalogue : {&catalogue_, &other}) catalogue->CloseDB();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
    fprintf(stderr, "places: %s.\n", places.c_str());
    exit(0);
  };
  using testing::ExitedWithCode;
  EXPECT_EXIT(places_after(""), ExitedWithCode(0), "places: 0.2.1 0.3.2 0.4.3 0.6\\.");
  EXPECT_EXIT(places_after("a:0 b:0"), ExitedWithCode(0), "places: 0.4.1 0.5.2 0.6.3 0.8\\.");
}

std::string Stats(bool (CRkPhotoDBManager::*read)(std::uint64_t&, int&, std::uint64_t&, int&,
                                                  std::uint64_t&, int&),
                  OpenCatalogue& c) {
  std::uint64_t total = 1, done = 1, error = 1;
  int count = 1, done_count = 1, error_count = 1;
  const bool answer = (c.*read)(total, count, done, done_count, error, error_count);
  return Joined(answer, total, count, done, done_count, error, error_count);
}

std::string Retriable(OpenCatalogue& c) {
  int count = 0;
  std::uint64_t bytes = 0;
  const bool answer = c.GetUploadRetriableErrorInfo(count, bytes);
  return Joined(answer, count, bytes, c.GetUploadRetriableErrorCount());
}

std::string Sent(OpenCatalogue& c) {
  std::uint64_t old = 0, all = 0;
  return Answers{
      c.GetSentBytesInUploadInfo("c", &old), old, c.UpdateSentBytesInUploadInfo("c", ~0ull),
      c.GetSentBytesInUploadInfo("c", &all), all, c.GetSentBytesInUploadInfo("no", &old),
      c.UpdateSentBytesInUploadInfo("no", 1)};
}

TEST_F(UploadTest, Operations) {
  const char* const kMixed = "a:2 b:-500 c:1 d:0 e:0 f:-7 z:3";
  const char* const kReady = "a:2 b:-500 c:0 d:0 e:0 f:-7 z:3";
  const char* const kBad = "a:-7212 b:-7103 c:-7104 d:-7105 e:-7106 f:-7107 g:-7108 h:-500 i:-7109";
  const struct {
    const char* before;
    std::function<std::string(OpenCatalogue&)> call;
    const char* answer;
    const char* after;
  } cases[] = {
      {kMixed,
       ANSWERS(c.GetUploadListCount(), c.GetUploadReadyCount(), c.GetUploadErrorCount(),
               c.GetUploadListMaxDispOrder(), c.cGetNextUploadListIndex()),
       "7|2|2|7|3", kMixed},
      {"a:2 b:3", ANSWERS(c.cGetNextUploadListIndex(), c.IsUploadPerfectCompleted()), "2|1",
       "a:2 b:3"},
      {"a:2 b:1", ANSWERS(c.cGetNextUploadListIndex(), c.IsUploadPerfectCompleted()), "2|0",
       "a:2 b:1"},
      {kMixed, [](auto& c) { return Stats(&OpenCatalogue::ResetUploadInfoStats, c); },
       "1|70|7|23|2|20|2", kMixed},
      {kBad, Retriable, "1|8|80|8", kBad},
      {kBad, ANSWER_OF(RetryUploadListErroredOfIndexed()), "1",
       "a:0 b:0 c:0 d:0 e:0 f:0 g:0 h:0 i:-7109"},
      {kMixed, ANSWER_OF(RetryUploadListErrored()), "1", "a:2 b:0 c:0 d:0 e:0 f:0 z:3"},
      {kMixed, [](auto& c) { return c.Login_InitUploadList(), ""; }, "", kReady},
      {kMixed, [](auto& c) { return c.ResetUploadTransStatus(), ""; }, "", kReady},
      {"a:2 b:3",
       ANSWERS(c.SetUploadListStatus("a", -9), c.SetUploadListStatus("no", 1),
               c.SetUploadListStatus("b", 5, 1), c.SetUploadListStatus("no", 1, 1),
               c.RetryUploadListErrored(), c.SetUploadListStatus("b", 0)),
       "1|0|1|0|1|1", "a:0 b:0"},
      {kMixed, Sent, "1|3|1|1|18446744073709551615|0|0", kMixed},
      {"a:2 b:3",
       ANSWERS(c.UpdateGUIDInUploadInfo("a", "x"), c.UpdateGUIDInUploadInfo("a", "x"),
               c.UpdateGUIDInUploadInfo(-1, "x")),
       "1|0|0", "x:2 b:3"},
      {kMixed,
       ANSWERS(c.DelUploadList("a"), c.DelUploadList("none"),
               c.DelUploadList(CStringArray{"b", "none", "e"}), c.DelUploadList(CStringArray()),
               c.DelUploadList(CDWordArray())),
       "1|1|1|1|1", "c:1 d:0 f:-7 z:3"},
      {kMixed, ANSWER_OF(DelUploadListCompleted()), "1", "b:-500 c:1 d:0 e:0 f:-7"},
      {kMixed, ANSWER_OF(DelUploadListAll()), "1", ""},
      {kMixed, ANSWER_OF(ResetUploadList()), "1", ""},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(&each - cases);
    Fill(each.before);
    EXPECT_EQ(each.call(catalogue_), each.answer);
    EXPECT_EQ(Queue(), each.after);
  }
}

TEST_F(UploadTest, KindsOfFilesAndWhatDoesNotFit) {
  const std::pair<const char*, unsigned> files[] = {
      {"a.PNG", 12000}, {"a.jpg", 12000}, {"a.jpg", 1048576}, {"a.txt", 1048575}, {"kdc", 1}};
  for (const auto& [name, bytes] : files) {
    UPLOADLIST row = Upload("g", 0, name, bytes);
    catalogue_.AddUploadList(row);
  }
  catalogue_.SetSmallFileUploadMaxSize(5);
  UPLOADLIST row = Upload("g", 0, "a.nef", 5);
  catalogue_.AddUploadList(UploadListArray{row});
  EXPECT_THAT(
      Ask("SELECT szFileName, byteSmall, byteImage FROM UploadList ORDER BY nID"),
      ElementsAre("a.PNG|0|1", "a.jpg|1|1", "a.jpg|0|1", "a.txt|1|0", "kdc|1|0", "a.nef|0|1"));
  row.nDispOrder = -4;
  std::ranges::fill(row.szLTBPath, 'x');
  row.szLTBPath[259] = 0;
  catalogue_.AddUploadList(row);
  EXPECT_EQ(row.nDispOrder, -4) << "was not added";
  EXPECT_EQ(TakeReports(), Reports{3163});
}

TEST_F(UploadTest, WhatFails) {
  CDWordArray folders{1};
  Fill("a:0");
  EXPECT_EQ(catalogue_.GetUploadFolderForGUID({"a", "a"}, folders), 0);
  EXPECT_FALSE(catalogue_.DelUploadList(CDWordArray{1, 2}));
  EXPECT_FALSE(catalogue_.DelUploadList(1u));
  EXPECT_EQ(TakeReports(), (Reports{3061, 3061, 3061})) << "the queue knows no folders";
  EXPECT_EQ(Queue(), "a:0");

  catalogue_.CloseDB();
  OpenCatalogue& c = catalogue_;
  UPLOADLIST row = Upload("g");
  CDWordArray one{0};
  EXPECT_EQ((Answers{c.GetUploadListCount(), c.GetUploadReadyCount(), c.GetUploadErrorCount(),
                     c.GetUploadRetriableErrorCount(), c.SetUploadListStatus("g", 1),
                     c.DelUploadListAll(), c.GetNextUploadList(row), c.GetUploadListMaxDispOrder(),
                     c.IsUploadPerfectCompleted(), c.SetUploadReorder_TOP(one),
                     c.GetSyncUploadListCount(), c.GetUploadInfoByIndex(row, 0)}),
            "-1|-1|-1|-1|0|0|0|0|0|0|0|1");
  EXPECT_EQ(TakeReports(), Reports(12, 3420));
}

TEST_F(UploadTest, TagsAndAlbums) {
  OpenCatalogue& c = catalogue_;
  CDWordArray tags{9};
  AlbumIndexArray albums{{1, 1}};
  EXPECT_EQ((Answers{c.AddUploadTag("a", {2, 0xFFFFFFFF}), c.AddUploadTag("b", {2}),
                     c.AddUploadTag("a", {1, 2, 3}), c.GetUploadTag("a", tags),
                     c.GetUploadTag("x", tags), c.DelUploadTag(CStringArray{"x", "b"})}),
            "1|1|0|3|0|1");
  EXPECT_EQ((Answers{c.AddUploadAlbum("a", {{3, 7}, {4, 7}}), c.AddUploadAlbum("b", {{3, 7}}),
                     c.AddUploadAlbum("b", {{5, 6}, {3, 7}, {9, 9}}), c.GetUploadAlbum("b", albums),
                     c.GetUploadAlbum("x", albums), c.RemoveUploadAlbum(3, 7)}),
            "1|1|0|2|0|1");
  std::ranges::sort(tags);
  std::ranges::sort(albums);
  EXPECT_EQ(tags, (CDWordArray{1, 2, 9, 0xFFFFFFFF}));
  EXPECT_EQ(albums, (AlbumIndexArray{{1, 1}, {3, 7}, {5, 6}}));
  EXPECT_THAT(Ask("SELECT * FROM UploadTag ORDER BY dwTagID"), ElementsAre("a|-1", "a|1", "a|2"));
  EXPECT_THAT(Ask("SELECT * FROM UploadAlbum ORDER BY szGUID"), ElementsAre("a|4|7", "b|5|6"));
  EXPECT_EQ((Answers{c.RemoveUploadTag(0xFFFFFFFF), c.RemoveUploadTag(2), c.DelUploadAlbum("b"),
                     c.DelUploadAlbum(CStringArray{"b", "x"}), c.DelUploadTag(CStringArray())}),
            "1|1|1|1|1");
  EXPECT_THAT(Ask("SELECT * FROM UploadTag"), ElementsAre("a|1"));
  EXPECT_THAT(Ask("SELECT * FROM UploadAlbum"), ElementsAre("a|4|7"));
  EXPECT_EQ((Answers{c.DelUploadTag("a"), c.GetUploadTag("a", tags)}), "1|0");
}

TEST_F(UploadTest, TheSyncQueue) {
  for (const char* row : {"'b', 2, 0", "'a', 1, 0", "'c', 0, -5"})
    RunBeside(
        "INSERT INTO SyncUploadList (szGUID, nDispOrder, nStatus, dxFileSize, dxSentBytes) "
        "values (" +
        std::string(row) + ", '10', '3')");
  OpenCatalogue& c = catalogue_;
  SYNCUPLOADLIST first, second, none = Upload<SYNCUPLOADLIST>("none");
  EXPECT_EQ((Answers{c.GetNextSyncUploadList(first), first.szGUID, c.GetNextSyncUploadList(second),
                     second.szGUID, c.GetNextSyncUploadList(none), none.szGUID}),
            "1|a|1|b|0|none");
  EXPECT_EQ(Stats(&OpenCatalogue::ResetSyncUploadInfoStats, c), "1|30|3|6|0|10|1");
  EXPECT_EQ(
      (Answers{c.UpdateGUIDInSyncUploadInfo("a", "x"),
               c.UpdateGUIDInSyncUploadInfo(second.nID, "y"),
               c.UpdateGUIDInSyncUploadInfo("a", "x"), c.UpdateGUIDInSyncUploadInfo(-1, "x")}),
      "1|1|0|0");
  EXPECT_THAT(Ask("SELECT szGUID, nStatus FROM SyncUploadList ORDER BY nDispOrder"),
              ElementsAre("c|-5", "x|1", "y|1"));
  EXPECT_EQ(
      (Answers{c.GetSyncUploadListCount(), c.DelSyncUploadListAll(), c.GetSyncUploadListCount()}),
      "3|1|0");
}

/// Ready rows are b to f: b has its thumbnail, c is large, d an image.
TEST_F(UploadTest, EachClaimTakesTheFirstOfItsKind) {
  OpenCatalogue& c = catalogue_;
  const struct {
    std::function<bool(UPLOADLIST&)> claim;
    const char *taken, *queue;
  } cases[] = {
      {[&](auto& row) { return c.GetNextUploadList(row); }, "bcdef", "a:1 b:1 c:1 d:1 e:1 f:1"},
      {[&](auto& row) { return c.GetNextUploadListWithThumbNotTrans(row); }, "cdef",
       "a:1 b:0 c:1 d:1 e:1 f:1"},
      {[&](auto& row) { return c.GetNextUploadListForSmallUpload(row, 3, 1); }, "bef",
       "a:1 b:1 c:0 d:0 e:1 f:1"},
      {[&](auto& row) { return c.GetNextUploadListForSmallUpload(row, 3, 0); }, "bdef",
       "a:1 b:1 c:0 d:1 e:1 f:1"},
      {[&](auto& row) { return c.GetNextUploadListForSmallUpload(row, 4, 1); }, "bdef",
       "a:1 b:1 c:0 d:1 e:1 f:1"},
      {[&](auto& row) { return c.GetNextUploadListForCreateLTB(row); }, "def",
       "a:1 b:0 c:0 d:0 e:0 f:0"},
  };
  for (const auto& each : cases) {
    Fill("a:1 b:0 c:0 d:0 e:0 f:0");
    RunBeside("UPDATE UploadList SET nThumbStatus = 1 WHERE szGUID = 'b'");
    RunBeside("UPDATE UploadList SET byteSmall = 0 WHERE szGUID = 'c'");
    RunBeside("UPDATE UploadList SET byteImage = 1 WHERE szGUID = 'd'");
    std::string taken;
    UPLOADLIST row;
    while (each.claim(row)) taken += row.szGUID;
    EXPECT_EQ(taken, each.taken);
    EXPECT_EQ(row.szGUID[0], taken.back()) << "is left alone at the end";
    EXPECT_EQ(Queue(), each.queue);
  }
  EXPECT_THAT(Ask("SELECT COUNT(*) FROM UploadList WHERE nThumbStatus = 1"), ElementsAre("4"));
}

TEST_F(UploadTest, ThreadsNeverClaimTheSameRow) {
  std::mutex mutex;
  std::set<std::string> taken;
  std::set<std::int32_t> places;
  std::atomic<int> failures = 0;
  {
    std::vector<std::jthread> threads;
    for (int worker = 0; worker < 4; ++worker)
      threads.emplace_back([&, worker] {
        for (int i = 0; i < 100; ++i) {
          UPLOADLIST added = Upload(Joined(worker, i)), row;
          catalogue_.AddUploadList(added);
          if (!catalogue_.GetNextUploadList(row)) ++failures;
          const std::scoped_lock lock(mutex);
          if (!taken.insert(row.szGUID).second || !places.insert(added.nDispOrder).second)
            ++failures;
        }
      });
  }
  EXPECT_EQ(Joined(taken.size(), failures, catalogue_.GetUploadReadyCount()), "400|0|0");
}

}  // namespace
}  // namespace vdstomgr
