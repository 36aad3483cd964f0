#include "catalogue_test.h"

namespace vdstomgr {
namespace {

using testing::ElementsAre;
using PhotoTest = CatalogueTest;

/// A row with another value in every column that a record holds.
constexpr const char* kFullRow =
    "INSERT INTO PhotoMaster (szGUID, szMD5, szFileName, byteFlag, byteRating, bytePublic, "
    "byteComment, szLTBURL, szRPURL, szOPURL, dxFileSize, wWidth, wHeight, dwFolderID, szShooter, "
    "szCameraModel, szCameraLens, byteRotate, szShootDate, szShootDay, szRegDate, szRegDay, "
    "szUserModify, szExifVer, szExifMaker, szExifModel, szExifExposure, szExifFnumber, "
    "szExifExposureBias, wExifFocalLength, wExif35FocalLength, wExifISO, byteExifRotate, "
    "byteExifMeteringMode, byteExifFlash, szExifShootDate, byteInfoSync, byteTagSync, "
    "dwLastWriteTimeLow, dwLastWriteTimeHigh, szUploadUserID, byteUploadEnd, byteLinkUrl, "
    "byteLockStatus, byteLockIDType, szLockID, szLockKey, szLockIP, szLockTime, szMemoID, "
    "nCommentCount, nTotalDownloadCount, nLinkDownloadCount) values ('g', 'md5', 'n', 255, 2, 3, "
    "4, "
    "'ltb', 'rp', 'op', '18446744073709551615', 65535, 6, -10, 'sh', 'cm', 'cl', 7, "
    "'2001-01-01 01:00:00', '2001-01-01', '2002-01-01 02:00:00', '2002-01-01', "
    "'2003-01-01 03:00:00', 'ev', 'em', 'eo', 'ex', 'ef', 'eb', 8, 9, 10, 11, 12, 13, "
    "'2004-01-01 04:00:00', 14, 15, -16, -17, 'up', 18, 19, 20, 21, 'li', 'lk', 'ip', "
    "'2005-01-01 05:00:00', 'mm', -22, 23, 24)";

TEST_F(PhotoTest, EveryColumnComesBackAsItWas) {
  RunBeside(kFullRow);
  const std::string row = Ask("SELECT * FROM PhotoMaster")[0];
  PHOTOINFO photo;
  ASSERT_TRUE(catalogue_.GetPhotoInfo("g", photo));
  std::string texts;
  for (const char* text :
       {photo.GetFileName(), photo.GetLTBURL(), photo.GetRPURL(), photo.GetOPURL(),
        photo.GetShooter(), photo.GetCameraModel(), photo.GetCameraLens(), photo.GetExifVer(),
        photo.GetExifMaker(), photo.GetExifModel(), photo.GetExifExposure(), photo.GetExifFnumber(),
        photo.GetExifExposureBias(), photo.GetUploadUserID(), photo.GetLockID(), photo.GetLockKey(),
        photo.GetLockIP(), photo.GetMemoID()})
    texts += text + std::string(" ");
  EXPECT_EQ(texts, "n ltb rp op sh cm cl ev em eo ex ef eb up li lk ip mm ");
  EXPECT_EQ(photo.Width * 1000 + photo.Height, 65535006);
  EXPECT_EQ(photo.FileSize, 18'446'744'073'709'551'615u);
  EXPECT_EQ(photo.LastWriteTimeHigh, 0xFFFFFFEF);
  EXPECT_EQ(photo.LockIDType + photo.ExifFlash + photo.TotalDownloadCount, 21 + 13 + 23);
  ASSERT_TRUE(catalogue_.SetPhotoInfo(Photo("g"), false));
  EXPECT_NE(Ask("SELECT * FROM PhotoMaster")[0], row);
  ASSERT_TRUE(catalogue_.AddPhotoInfo(photo, true));
  EXPECT_EQ(Ask("SELECT * FROM PhotoMaster")[0], row);
}

TEST_F(PhotoTest, OddRowsAreRead) {
  RunBeside(
      "INSERT INTO PhotoMaster (szGUID, wWidth, wHeight, szShootDate, dxFileSize) "
      "values ('odd', 30, 20, 'no date', 'x')");
  PHOTOINFO photo;
  ASSERT_TRUE(catalogue_.GetPhotoInfo("odd", photo));
  EXPECT_EQ(photo.Width, 400) << "without a thumbnail";
  EXPECT_EQ(photo.ShootDate, 0);
  EXPECT_EQ(photo.FileSize, 0u);
  PHOTOINFO untouched = Photo("same");
  EXPECT_FALSE(catalogue_.GetPhotoInfo("none", untouched));
  EXPECT_FALSE(catalogue_.GetPhotoInfo(nullptr, untouched));
  EXPECT_STREQ(untouched.szGUID, "same");
}

TEST_F(PhotoTest, ABatchEndsAtTheFirstTakenGuid) {
  EXPECT_TRUE(catalogue_.AddPhotoInfo(PhotoArray()));
  EXPECT_FALSE(catalogue_.AddPhotoInfo(PhotoArray{Photo("a"), Photo("b"), Photo("A"), Photo("c")}));
  EXPECT_THAT(Ask("SELECT szGUID FROM PhotoMaster ORDER BY szGUID"), ElementsAre("a", "b"));
  PHOTOINFO wide = Photo("w");
  wide.SetExifVer("123456789");
  EXPECT_FALSE(catalogue_.AddPhotoInfo(PhotoArray{Photo("d"), wide, Photo("e")}));
  EXPECT_EQ(TakeReports(), Reports{3163});
  EXPECT_EQ(catalogue_.GetPhotoCount(), 3);
}

TEST_F(PhotoTest, ABatchIsReadInItsOrder) {
  catalogue_.AddPhotoInfo(PhotoArray{Photo("a"), Photo("b"), Photo("c")});
  std::vector<DWORD> told;
  PhotoArray out{Photo("before")};
  EXPECT_EQ(catalogue_.GetPhotoInfo({"c", "none", "a"}, out,
                                    [&](DWORD done, DWORD total, const char*, bool) {
                                      told.push_back(done * 10 + total);
                                    }),
            3);
  EXPECT_STREQ(out[1].szGUID, "c");
  EXPECT_THAT(told, ElementsAre(3, 23));
  EXPECT_EQ(catalogue_.GetPhotoInfo(CStringArray(), out, nullptr), 0);
}

TEST_F(PhotoTest, QueriesAnswerByFolder) {
  catalogue_.AddPhotoInfo(PhotoArray{Photo("a", 1, "z.jpg"), Photo("b", 1, "it's.jpg"),
                                     Photo("c", 2, "it's.jpg"), Photo("d", 1, "it's.jpg")});
  EXPECT_EQ(catalogue_.GetFolderID("c"), 2u);
  EXPECT_EQ(catalogue_.GetFolderID("none"), kNoFolder);
  EXPECT_EQ(catalogue_.GetPhotoName("a") + catalogue_.GetPhotoName("none"), "z.jpg");
  EXPECT_TRUE(catalogue_.IsPhoto(1, "IT'S.jpg"));
  EXPECT_FALSE(catalogue_.IsPhoto(3, "it's.jpg"));
  CStringArray guids;
  EXPECT_EQ(catalogue_.GetPhotoGUID(1, "it's.jpg", guids), 2);
  EXPECT_EQ(catalogue_.GetPhotoGUID(2, "it's.jpg"), "c");
  EXPECT_EQ(catalogue_.GetPhotoGUID(9, "it's.jpg"), "");
  EXPECT_EQ(catalogue_.GetPhotoInFolder(1, guids), 5);
  PhotoArray photos;
  EXPECT_EQ(catalogue_.GetPhotoInFolder(1, photos), 3);
  EXPECT_STREQ(photos[2].szGUID, "a");
  CountArray counts;
  EXPECT_EQ(catalogue_.GetPhotoCountInFolders(counts), 2);
  EXPECT_EQ(catalogue_.GetPhotoCountInFolders({1, 7}, counts), 3);
  EXPECT_EQ(counts[2].dwFolderID, 1u);
  EXPECT_EQ(counts[2].Count, 3);
  EXPECT_EQ(catalogue_.GetPhotoCountInFolders(CDWordArray(), counts), 0);
  EXPECT_EQ(TakeReports(), Reports{3075});
  EXPECT_EQ(catalogue_.GetPhotoCount(), 4);
}

}  // namespace
}  // namespace vdstomgr
