#include "catalogue_test.h"
#include "vdstomgr/platform/utility/utility_lib.h"

namespace vdstomgr {
namespace {

using PhotoAttributesTest = CatalogueTest;

TEST_F(PhotoAttributesTest, FlagsAre0To7) {
  PHOTOINFO photo = Photo("a");
  photo.SetFlag(BYTE{136});
  ASSERT_TRUE(catalogue_.AddPhotoInfo(photo, false));
  EXPECT_FALSE(catalogue_.SetFlag("a", 8, true) || catalogue_.SetFlag({"a"}, -1, false));
  const int kFlags[][2] = {{7, 1}, {6, 0}, {3, 1}, {35, 0}};
  for (const auto& [bit, flag] : kFlags) EXPECT_EQ(catalogue_.GetFlag("a", bit), flag) << bit;
  EXPECT_EQ(catalogue_.GetFlag("none", 7), -1);
}

TEST_F(PhotoAttributesTest, ShootingDays) {
  for (const std::string day : {"2005-07-25", "2005-07-10", "", "2004-13-01", "2005-07-25"}) {
    const std::string guid = std::to_string(catalogue_.GetPhotoCount());
    RunBeside(
        ("INSERT INTO PhotoMaster (szGUID, szShootDay) values ('" + guid + "', '" + day + "')")
            .c_str());
  }
  CDWordArray days;
  EXPECT_EQ(catalogue_.GetShootDateList(days), 3);
  std::string texts;
  for (const DWORD day : days)
    texts += CUtilityLib::GetTime(static_cast<std::int32_t>(day)).Str() + " ";
  EXPECT_EQ(texts, "2005-01-01 00:00:00 2005-06-30 00:00:00 2005-07-05 00:00:00 ");
}

TEST_F(PhotoAttributesTest, EmptyListsNeedNoDatabase) {
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
