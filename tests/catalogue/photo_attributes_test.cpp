#include "operation_table.h"
#include "vdstomgr/platform/utility/utility_lib.h"

namespace vdstomgr {
namespace {

using Rows = std::vector<const char*>;

const Rows kPhotos = {
    "INSERT INTO PhotoMaster (szGUID, byteRotate, byteFlag, szShootDay, byteInfoSync, byteTagSync) "
    "values ('a', 2, 136, '2005-07-25', 0, 0)",
    "INSERT INTO PhotoMaster (szGUID, byteRotate, byteFlag, szShootDay, byteInfoSync, byteTagSync) "
    "values ('b', 3, 0, '2005-07-10', 0, 0)"};

/// The value of a column of both photos, and how they are marked.
#define MARKED(column) \
  "SELECT " column ", byteInfoSync, byteTagSync FROM PhotoMaster ORDER BY szGUID"
/// A setter for one photo, then for a list.
#define SET_BOTH(setter, one, many)                                        \
  [](OpenCatalogue& catalogue) {                                           \
    return InOrder{catalogue.setter("a", one), catalogue.setter("n", one), \
                   catalogue.setter({"b", "none"}, many)};                 \
  }

TEST_F(OperationTest, PhotoAttributes) {
  Check({
      {"rotation",
       kPhotos,
       [](OpenCatalogue& catalogue) {
         return InOrder{catalogue.SetRotate("b", 7), catalogue.SetRotate("none", 7)};
       },
       "1|0",
       MARKED("byteRotate"),
       {"2|0|0", "7|1|0"}},
      {"turns",
       kPhotos,
       SET_BOTH(SetRelativeRotate, 3, 2),
       "1|0|1",
       MARKED("byteRotate"),
       {"1|1|0", "1|1|0"}},
      {"title",
       kPhotos,
       SET_BOTH(SetTitle, "it's 100%d", nullptr),
       "1|1|1",
       MARKED("szTitle"),
       {"it's 100%d|1|0", "|1|0"}},
      {"file name",
       kPhotos,
       SET_BOTH(SetFileName, "o'a", "o'b"),
       "1|1|1",
       MARKED("szFileName"),
       {"o'a|1|0", "o'b|1|0"}},
      {"description",
       kPhotos,
       SET_BOTH(SetDesc, "o'a", "o'b"),
       "1|1|1",
       MARKED("szDesc"),
       {"o'a|1|0", "o'b|1|0"}},
      {"shooter",
       kPhotos,
       SET_BOTH(SetShooter, "o'a", "o'b"),
       "1|1|1",
       MARKED("szShooter"),
       {"o'a|1|0", "o'b|1|0"}},
      {"date, without the day",
       kPhotos,
       SET_BOTH(SetShootDate, CUtilityLib::GetTime("2001-02-03 04:05:06"),
                CUtilityLib::GetTime("2002-02-03 04:05:06")),
       "1|1|1",
       MARKED("szShootDate, szShootDay"),
       {"2001-02-03 04:05:06|2005-07-25|1|0", "2002-02-03 04:05:06|2005-07-10|1|0"}},
      {"folder",
       kPhotos,
       SET_BOTH(SetFolder, 0xFFFFFFF6, 5),
       "1|1|1",
       MARKED("dwFolderID"),
       {"-10|0|0", "5|0|0"}},
      {"public",
       kPhotos,
       SET_BOTH(SetPublic, 1, 2),
       "1|1|1",
       MARKED("bytePublic"),
       {"1|0|0", "2|0|0"}},
      {"camera",
       kPhotos,
       SET_BOTH(SetCameraModel, "o'a", "o'b"),
       "1|1|1",
       MARKED("szCameraModel"),
       {"o'a|0|0", "o'b|0|0"}},
      {"lens",
       kPhotos,
       SET_BOTH(SetCameraLens, "o'a", "o'b"),
       "1|1|1",
       MARKED("szCameraLens"),
       {"o'a|0|0", "o'b|0|0"}},
      {"link",
       kPhotos,
       SET_BOTH(SetLinkUrl, 1, 255),
       "1|1|1",
       MARKED("byteLinkUrl"),
       {"1|0|0", "255|0|0"}},
      {"upload",
       kPhotos,
       ANSWER_OF(SetUploadEnd("b", 9)),
       "1",
       MARKED("byteUploadEnd"),
       {"null|0|0", "9|0|0"}},
      {"tags are marked",
       kPhotos,
       [](OpenCatalogue& catalogue) {
         return InOrder{catalogue.SetTagSyncFlag("a"), catalogue.SetTagSyncFlag("none"),
                        catalogue.SetTagSyncFlag({"b", "none"})};
       },
       "1|0|1",
       MARKED("szGUID"),
       {"a|0|1", "b|0|1"}},
      {"deleting",
       kPhotos,
       [](OpenCatalogue& catalogue) {
         return InOrder{catalogue.DeletePhoto("none"), catalogue.DeletePhoto("A"),
                        catalogue.GetPhotoCount(), catalogue.DeletePhoto({"none", "b"})};
       },
       "1|1|1|1",
       MARKED("szGUID"),
       {}},
  });
}

TEST_F(OperationTest, PhotoFlags) {
  Check({
      {"a flag that is so already does not mark",
       kPhotos,
       [](OpenCatalogue& catalogue) {
         return InOrder{catalogue.SetFlag("a", 3, true), catalogue.SetFlag("b", 0, false)};
       },
       "1|1",
       MARKED("byteFlag"),
       {"136|0|0", "0|0|0"}},
      {"set and cleared, the other flags stay",
       kPhotos,
       [](OpenCatalogue& catalogue) {
         return InOrder{catalogue.SetFlag("a", 7, false), catalogue.SetFlag("none", 7, true),
                        catalogue.SetFlag({"none", "a", "b"}, 0, true)};
       },
       "1|0|1",
       MARKED("byteFlag"),
       {"9|1|0", "1|1|0"}},
      {"flags are 0 to 7",
       kPhotos,
       [](OpenCatalogue& catalogue) {
         return InOrder{catalogue.SetFlag("a", 8, true), catalogue.SetFlag({"a"}, -1, false),
                        catalogue.GetFlag("a", 7),       catalogue.GetFlag("a", 6),
                        catalogue.GetFlag("a", 35),      catalogue.GetFlag("none", 7)};
       },
       "0|0|1|0|0|-1",
       MARKED("byteFlag"),
       {"136|0|0", "0|0|0"}},
  });
}

TEST_F(OperationTest, ShootingDays) {
  CDWordArray days;
  for (const char* statement : kPhotos) RunBeside(statement);
  RunBeside("INSERT INTO PhotoMaster (szGUID, szShootDay) values ('c', '')");
  RunBeside("INSERT INTO PhotoMaster (szGUID, szShootDay) values ('d', '2004-13-01')");
  RunBeside("INSERT INTO PhotoMaster (szGUID, szShootDay) values ('e', '2005-07-25')");
  EXPECT_EQ(catalogue_.GetShootDateList(days), 3);
  std::string texts;
  for (const DWORD day : days)
    texts += CUtilityLib::GetTime(static_cast<std::int32_t>(day)).Str() + " ";
  EXPECT_EQ(texts, "2005-01-01 00:00:00 2005-06-30 00:00:00 2005-07-05 00:00:00 ");
}

TEST_F(OperationTest, EmptyListsNeedNoDatabase) {
  const CStringArray none;
  CDWordArray tags;
  ASSERT_TRUE(catalogue_.CloseDB());
  EXPECT_TRUE(catalogue_.SetTitle(none, "x"));
  EXPECT_TRUE(catalogue_.SetFlag(none, 1, true));
  EXPECT_TRUE(catalogue_.AddTag(none, 1, true));
  EXPECT_TRUE(catalogue_.RemoveTag(none, 1));
  catalogue_.RemoveAllTagByGUID(none, true);
  EXPECT_EQ(catalogue_.GetTagNames(none, 1), "");
  EXPECT_EQ(catalogue_.GetTagLists(none, tags, tags), 0);
  EXPECT_FALSE(catalogue_.SetTitle("a", "x"));
  EXPECT_EQ(TakeReports().size(), 1u) << "of the one that was no list";
}

}  // namespace
}  // namespace vdstomgr
