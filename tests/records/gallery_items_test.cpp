#include "vdstomgr/records/gallery_items.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/platform/utility/utility_lib.h"
#include "vdstomgr/records/photo_info.h"
#include "vdstomgr/records/trash_photo_info.h"

namespace {

std::int32_t At(const char* time) {
  return CUtilityLib::GetTime(time);
}

/// Every field in order, times as local texts; an empty text as "-".
std::string Shown(const GA_TBITEMINFO& item) {
  std::ostringstream out;
  const auto text = [](const char* value) { return *value == '\0' ? "-" : value; };
  out << int{item.Type} << ' ' << text(item.GUID) << ' ' << static_cast<int>(item.dwFolderID) << ' '
      << text(item.GetFileName()) << ' ' << text(item.GetFolderPath()) << ' '
      << text(item.GetWriterID()) << ' ' << text(item.GetMemoID()) << ' ' << text(item.GetMemo())
      << ' ' << text(item.GetUploadUserID()) << ' ' << item.FileSize;
  for (const BYTE byte : {item.NoThumbnail, item.Rotate}) out << ' ' << int{byte};
  out << ' ' << item.Width << 'x' << item.Height;
  for (const BYTE byte :
       {item.Public, item.Flag, item.Comment, item.UploadEnd, item.LinkUrl, item.LockStatus})
    out << ' ' << int{byte};
  for (const std::int32_t time : {item.RegDate, item.RegDay, item.DeleteDate})
    out << ' ' << (time == 0 ? CString("0") : CUtilityLib::GetTime(time)).Str();
  for (const std::int32_t number : {item.SeqNo, item.ViewCount, item.CommentCount,
                                    item.TotalDownloadCount, item.LinkDownloadCount})
    out << ' ' << number;
  out << ' ' << item.ModDate.dwLowDateTime << ' ' << item.ModDate.dwHighDateTime;
  return out.str();
}

std::string Shown(const GA_ITEMINFO& item) {
  std::ostringstream out;
  out << Shown(static_cast<const GA_TBITEMINFO&>(item)) << " + " << int{item.Deleted} << ' '
      << static_cast<int>(item.dwFolderID) << ' ' << CUtilityLib::GetTime(item.ShootDate).Str()
      << ' ' << CUtilityLib::GetTime(item.ShootDay).Str() << ' ' << item.ExifISO << ' '
      << item.LastWriteTimeLow << ' ' << item.LastWriteTimeHigh;
  return out.str();
}

PHOTOINFO FullPhoto() {
  PHOTOINFO photo;
  photo.SetGUID("g");
  photo.SetFileName("n.jpg");
  photo.SetMemoID("memo");
  photo.SetUploadUserID("up");
  photo.FileSize = 1, photo.byteNoLTB = 2, photo.byteRotate = 3, photo.Width = 4, photo.Height = 5;
  photo.bytePublic = 6, photo.byteFlag = 7, photo.byteComment = 8, photo.UploadEnd = 9;
  photo.LinkUrl = 10, photo.LockStatus = 11, photo.CommentCount = 12;
  photo.TotalDownloadCount = 13, photo.LinkDownloadCount = 14, photo.dwFolderID = 15;
  photo.ExifISO = 16, photo.LastWriteTimeLow = 17, photo.LastWriteTimeHigh = 18;
  photo.RegDate = At("2001-02-03 04:05:06"), photo.ShootDate = At("2002-03-04 05:06:07");
  return photo;
}

TRASHPHOTOINFO FullTrash() {
  TRASHPHOTOINFO photo;
  photo.SetGUID("t");
  photo.SetFileName("t.jpg");
  photo.SetFolderPath("a/b");
  photo.FileSize = 21, photo.byteNoLTB = 22, photo.byteRotate = 23, photo.Width = 24;
  photo.Height = 25, photo.UploadEnd = 26, photo.LockStatus = 27;
  photo.RegDate = At("2003-04-05 06:07:08"), photo.DeleteDate = At("2004-05-06 07:08:09");
  return photo;
}

constexpr char kZero[] = " - 0 - - - - - - 0 0 0 0x0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0";
constexpr char kFromPhoto[] =
    "0 g -1 n.jpg - - memo - up 1 2 3 4x5 6 7 8 9 10 11 2001-02-03 04:05:06 2001-02-03 00:00:00 "
    "0 0 0 12 13 0 17 18";

TEST(GalleryItem, StartsEmpty) {
  EXPECT_EQ(Shown(GA_TBITEMINFO()), std::string("255") + kZero);
  EXPECT_EQ(Shown(GA_ITEMINFO()).find(std::string("0") + kZero + " + 0 -1 "), 0u);
  const GA_TRASHITEMINFO typed(1);
  EXPECT_EQ(Shown(typed), "1 - 0 - - - - - - 0 0 0 400x400 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0");
}

TEST(GalleryItem, IsFilledFromRecords) {
  PHOTOINFO photo = FullPhoto();
  GA_TBITEMINFO item(photo);
  EXPECT_EQ(Shown(item), kFromPhoto);
  GA_ITEMINFO listed(photo);
  EXPECT_EQ(Shown(listed), std::string(kFromPhoto).replace(4, 2, "0") +
                               " + 0 15 2002-03-04 05:06:07 2002-03-04 00:00:00 16 17 18");
  photo.RegDate = -1;
  listed.SetPhotoInfo(&photo);
  EXPECT_EQ(listed.RegDate, -1) << "as it is";
  const TRASHPHOTOINFO trashed = FullTrash();
  const std::string from_trash =
      "1 t -1 t.jpg - - memo - up 21 22 23 24x25 0 0 0 26 10 27 2003-04-05 06:07:08 "
      "2003-04-05 00:00:00 0 0 0 12 13 0 17 18";
  item.SetPhotoInfo(&trashed);
  EXPECT_EQ(Shown(item), from_trash) << "over a photo: what the trash has not stays";
  EXPECT_EQ(Shown(GA_TRASHITEMINFO(trashed)),
            "1 t -1 t.jpg a/b - - - - 21 22 23 24x25 0 0 0 26 0 27 2003-04-05 06:07:08 "
            "2003-04-05 00:00:00 2004-05-06 07:08:09 0 0 0 0 0 0 0");
}

TEST(GalleryItem, IsFilledFromOtherItems) {
  GA_ITEMINFO listed(FullPhoto());
  GA_TBITEMINFO item;
  item.SetMemo("old");
  item.SetPhotoInfo(&listed);
  EXPECT_EQ(Shown(item), std::string(kFromPhoto).replace(22, 1, "old"));
  GA_TRASHITEMINFO trashed(FullTrash());
  trashed.Public = trashed.Flag = trashed.Comment = trashed.LinkUrl = 1;
  trashed.SetMemoID("m"), trashed.SetUploadUserID("u"), trashed.SetModDate({31, 32});
  trashed.SetCommentCount(33), trashed.SetTotalDownloadCount(34), trashed.SetLinkDownloadCount(35);
  const char* const expected =
      "1 t -1 t.jpg a/b - m - u 21 22 23 24x25 0 0 0 26 0 27 2003-04-05 06:07:08 "
      "2003-04-05 00:00:00 2004-05-06 07:08:09 0 0 0 34 0 31 32";
  EXPECT_EQ(Shown(GA_TBITEMINFO(trashed)), expected);
  const GA_TRASHITEMINFO copy = trashed;
  EXPECT_EQ(copy.CommentCount, 33) << "a copy has all";
}

TEST(GalleryItem, SettersFillTheirField) {
  GA_TBITEMINFO item;
  item.SetType(1), item.SetGUID("g"), item.SetGUID(nullptr), item.SetFolderID(2);
  item.SetFileName("n"), item.SetFolderPath("p"), item.SetWriterID("w"), item.SetMemoID("i");
  item.SetMemo("a\tb"), item.SetUploadUserID("u"), item.SetFileSize(3), item.SetNoThumbnail(4);
  item.SetRotate(5), item.SetWidthHeight(65536 + 6, 7), item.SetPublic(8), item.SetFlag(BYTE{9});
  item.SetComment(10), item.SetUploadEnd(11), item.SetLinkUrl(12), item.SetLockStatus(13);
  item.SetRegDate(-1), item.SetDeleteDate(At("2001-01-01 02:03:04")), item.SetSeqNo(14);
  item.SetViewCount(15), item.SetCommentCount(16), item.SetTotalDownloadCount(17);
  item.SetLinkDownloadCount(18), item.SetModDate({19, 20});
  EXPECT_EQ(item.RegDay, vdstomgr::LocalMidnight(0)) << "of the time 0";
  item.RegDay = 0;
  EXPECT_EQ(Shown(item),
            "1 g 2 n p w i a\tb u 3 4 5 6x7 8 9 10 11 12 13 0 0 2001-01-01 02:03:04 14 15 16 17 18 "
            "19 20");
  GA_TBITEMINFO copy(item);
  copy = item;
  item.FreeBuff();
  EXPECT_STREQ(item.GetUploadUserID(), "");
  EXPECT_STREQ(copy.GetUploadUserID(), "u");
  for (const int bit : {1, 8, 9, 32 + 2, -1}) copy.SetFlag(bit, true);
  EXPECT_EQ(copy.Flag, 15);
  copy.SetFlag(-32, false);
  EXPECT_EQ(copy.Flag, 14);
}

TEST(GalleryItem, CopyingAListsItemLeavesTheThumbnail) {
  GA_ITEMINFO item(FullPhoto());
  item.SetDeleted(1), item.SetFolder(2), item.SetShootDate(At("2005-06-07 08:09:10"));
  const std::string rest = " + 1 2 2005-06-07 08:09:10 2005-06-07 00:00:00 16 17 18";
  EXPECT_EQ(Shown(GA_ITEMINFO(item)), std::string("0") + kZero + rest);
  GA_ITEMINFO other;
  other = item;
  EXPECT_EQ(Shown(other), Shown(item));
  EXPECT_EQ(Shown(GA_ITEMINFO(std::move(other))), Shown(item));
  EXPECT_EQ(Shown(item).substr(Shown(item).find(" +")), rest);
}

TEST(GalleryItem, AMemoKeepsWholeCharacters) {
  const std::string ninety_nine(99, 'm');
  GA_TBITEMINFO item;
  const auto memo_of = [&](const std::string& text) {
    item.SetMemo(text.c_str());
    return std::string(item.GetMemo());
  };
  EXPECT_EQ(memo_of(ninety_nine + std::string(51, 'x')), ninety_nine + "x");
  EXPECT_EQ(memo_of(ninety_nine + "\xB0\xA1"), ninety_nine);
  EXPECT_EQ(memo_of(ninety_nine + "\x80"), ninety_nine) << "any high byte begins a character";
  EXPECT_EQ(memo_of(ninety_nine.substr(1) + "\xB0\xA1"), ninety_nine.substr(1) + "\xB0\xA1");
  EXPECT_EQ(memo_of("m\xB0"), "m\xB0");
  vdstomgr::SetTextCodePage(vdstomgr::TextCodePage::utf8);
  EXPECT_EQ(memo_of(ninety_nine.substr(1) + "가"), ninety_nine.substr(1));
  vdstomgr::SetTextCodePage(vdstomgr::TextCodePage::korean949);
}

TEST(GalleryItem, FitsAsAPhotoDoes) {
  GA_TBITEMINFO item;
  item.SetWidthHeight(400, 300);
  item.SetRotate(1);
  EXPECT_EQ(item.GetImageSizeInArea({200, 200}, false), (CSize{267, 200}));
  EXPECT_EQ(item.GetImageRectInArea({10, 20, 210, 220}, false), (CRect{35, 20, 185, 220}));
}

}  // namespace
