#include "operation_table.h"
#include "vdstomgr/platform/utility/utility_lib.h"

namespace vdstomgr {
namespace {

#define PHOTO(values)                                                                              \
  "INSERT INTO PhotoMaster (szGUID, byteRotate, byteFlag, szShootDay, byteInfoSync, byteTagSync) " \
  "values (" values ", 0, 0)"
const std::vector<const char*> kPhotos = {PHOTO("'a', 2, 136, '2005-07-25'"),
                                          PHOTO("'b', 3, 0, '2005-07-10'")};

/// Columns of both photos, and how they are marked.
#define MARKED(columns) \
  "SELECT " columns ", byteInfoSync, byteTagSync FROM PhotoMaster ORDER BY szGUID"
/// A setter for one photo, for a missing one and for a list, and what the columns are then.
#define SETTER(answer, setter, one, many, columns, after)                                          \
  Operation {                                                                                      \
        #setter, kPhotos,                                                                            \
        ANSWERS(c.setter("a", one), c.setter("none", one), c.setter({"b", "none"}, many)), answer, \
        MARKED(columns), Split(after)                                                              \
  }

TEST_F(OperationTest, PhotoAttributes) {
  const std::int32_t one = CUtilityLib::GetTime("2001-02-03 04:05:06");
  Check({
      SETTER("1|0|1", SetRelativeRotate, 3, 2, "byteRotate", "1|1|0 / 1|1|0"),
      SETTER("1|1|1", SetTitle, "it's 100%d", nullptr, "szTitle", "it's 100%d|1|0 / |1|0"),
      SETTER("1|1|1", SetFileName, "o'a", "b", "szFileName", "o'a|1|0 / b|1|0"),
      SETTER("1|1|1", SetDesc, "o'a", "b", "szDesc", "o'a|1|0 / b|1|0"),
      SETTER("1|1|1", SetShooter, "o'a", "b", "szShooter", "o'a|1|0 / b|1|0"),
      SETTER("1|1|1", SetFolder, 0xFFFFFFF6, 5, "dwFolderID", "-10|0|0 / 5|0|0"),
      SETTER("1|1|1", SetPublic, 1, 2, "bytePublic", "1|0|0 / 2|0|0"),
      SETTER("1|1|1", SetCameraModel, "o'a", "b", "szCameraModel", "o'a|0|0 / b|0|0"),
      SETTER("1|1|1", SetCameraLens, "o'a", "b", "szCameraLens", "o'a|0|0 / b|0|0"),
      SETTER("1|1|1", SetLinkUrl, 1, 255, "byteLinkUrl", "1|0|0 / 255|0|0"),
      {"the date without the day", kPhotos,
       [&](OpenCatalogue& c) {
         return Answers{c.SetShootDate("a", one), c.SetShootDate({"none", "b"}, one + 1)};
       },
       "1|1", MARKED("szShootDate, szShootDay"),
       Split("2001-02-03 04:05:06|2005-07-25|1|0 / 2001-02-03 04:05:07|2005-07-10|1|0")},
      {"single ones", kPhotos,
       ANSWERS(c.SetRotate("b", 7), c.SetRotate("none", 7), c.SetUploadEnd("a", 9)), "1|0|1",
       MARKED("byteRotate, byteUploadEnd"), Split("2|9|0|0 / 7|null|1|0")},
      {"tags are marked", kPhotos,
       ANSWERS(c.SetTagSyncFlag("a"), c.SetTagSyncFlag("none"), c.SetTagSyncFlag({"none", "b"})),
       "1|0|1", MARKED("szGUID"), Split("a|0|1 / b|0|1")},
      {"deleting", kPhotos,
       ANSWERS(c.DeletePhoto("none"), c.DeletePhoto("A"), c.GetPhotoCount(),
               c.DeletePhoto({"none", "b"})),
       "1|1|1|1", MARKED("szGUID"), Split("")},
  });
}

TEST_F(OperationTest, PhotoFlags) {
  Check({
      {"a flag that is so already does not mark", kPhotos,
       ANSWERS(c.SetFlag("a", 3, true), c.SetFlag("b", 0, false)), "1|1", MARKED("byteFlag"),
       Split("136|0|0 / 0|0|0")},
      {"set and cleared, the other flags stay", kPhotos,
       ANSWERS(c.SetFlag("a", 7, false), c.SetFlag("none", 7, true),
               c.SetFlag({"none", "a", "b"}, 0, true)),
       "1|0|1", MARKED("byteFlag"), Split("9|1|0 / 1|1|0")},
      {"flags are 0 to 7", kPhotos,
       ANSWERS(c.SetFlag("a", 8, true), c.SetFlag({"a"}, -1, false), c.GetFlag("a", 7),
               c.GetFlag("a", 6), c.GetFlag("a", 35), c.GetFlag("none", 7)),
       "0|0|1|0|0|-1", MARKED("byteFlag"), Split("136|0|0 / 0|0|0")},
  });
}

TEST_F(OperationTest, ShootingDays) {
  CDWordArray days;
  for (const char* statement : kPhotos) RunBeside(statement);
  for (const char* statement :
       {PHOTO("'c', 0, 0, ''"), PHOTO("'d', 0, 0, '2004-13-01'"), PHOTO("'e', 0, 0, '2005-07-25'")})
    RunBeside(statement);
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
  EXPECT_TRUE(catalogue_.SetTitle(none, "x") && catalogue_.SetFlag(none, 1, true));
  EXPECT_TRUE(catalogue_.AddTag(none, 1, true) && catalogue_.RemoveTag(none, 1));
  catalogue_.RemoveAllTagByGUID(none, true);
  EXPECT_EQ(catalogue_.GetTagNames(none, 1), "");
  EXPECT_EQ(catalogue_.GetTagLists(none, tags, tags), 0);
  EXPECT_EQ(catalogue_.GetAlbumNames(none), "");
  EXPECT_FALSE(catalogue_.SetTitle("a", "x"));
  EXPECT_EQ(TakeReports().size(), 1u) << "of the one that was no list";
}

}  // namespace
}  // namespace vdstomgr
