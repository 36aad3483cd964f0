#include "tools/vdsto/import/photo_record.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "tools/vdsto/import/bounded_queue.h"
#include "tools/vdsto/library/folder_rows.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/library/photo_guid.h"
#include "tools/vdsto/picture/memory_budget.h"
#include "tools/vdsto/text/clock_time.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

PictureFacts Facts(PictureState state, uint32_t width, uint32_t height) {
  PictureFacts facts;
  facts.format = PictureFormat::kJpeg;
  facts.state = state;
  facts.width = width;
  facts.height = height;
  facts.stamp = {5'000'000'000, 132'000'000'000'000'001};
  facts.md5 = "900150983cd24fb0d6963f7d28e17f72";
  facts.exif.camera_model = "Canon EOS 40D";
  facts.exif.shooter = "Kim";
  facts.exif.shot = "2004-06-29 15:29:33";
  return facts;
}

TEST(PhotoRecord, ANewPictureFillsItsRow) {
  const PHOTOINFO photo = NewPhotoRecord("/p/\u1112\u1174\u11AB.jpg",
                                         Facts(PictureState::kGood, 70000, 3000), 7, 1700000000);
  EXPECT_STREQ(photo.GetFileName(), "흰.jpg");
  EXPECT_STREQ(photo.GetOPURL(), "/p/\u1112\u1174\u11AB.jpg");
  EXPECT_EQ(ImageKeyOf(photo.GetLTBURL()), std::string(photo.szGUID) + ".400.jpg");
  EXPECT_TRUE(IsPhotoGuid(photo.szGUID));
  EXPECT_STREQ(photo.szMD5, "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ(photo.Width, 65535) << "the most that the row holds";
  EXPECT_EQ(photo.Height, 3000);
  EXPECT_EQ(std::tuple(photo.dwFolderID, photo.RegDate, photo.ShootDate),
            std::tuple(7u, 1700000000, TimeOfClock("2004-06-29 15:29:33")));
  EXPECT_EQ(StampOf(photo), (FileStamp{5'000'000'000, 132'000'000'000'000'001}));
  EXPECT_EQ(photo.InfoSync, 0);
}

TEST(PhotoRecord, ABrokenPictureKeepsItsSizeAndHasNoThumbnail) {
  PHOTOINFO photo = NewPhotoRecord("/p/a.jpg", Facts(PictureState::kBroken, 200, 100), 7, 1);
  EXPECT_STREQ(photo.GetLTBURL(), "");
  EXPECT_EQ(std::tuple(photo.Width, photo.Height), std::tuple(200, 100));
  RefreshPhotoRecord(Facts(PictureState::kGood, 640, 480), photo);
  EXPECT_EQ(std::tuple(photo.Width, photo.Height), std::tuple(640, 480));
  RefreshPhotoRecord(Facts(PictureState::kBroken, 320, 240), photo);
  EXPECT_EQ(std::tuple(photo.Width, photo.Height), std::tuple(320, 240));
}

TEST(PhotoRecord, WhatTheUserSetStays) {
  PHOTOINFO photo = NewPhotoRecord("/p/a.jpg", Facts(PictureState::kGood, 640, 480), 7, 1);
  PictureFacts changed = Facts(PictureState::kGood, 640, 480);
  changed.exif.camera_model = "NIKON E775";
  changed.exif.shooter = "Lee";
  changed.exif.shot = "2001-09-09 10:46:40";
  PHOTOINFO untouched = photo;
  RefreshPhotoRecord(changed, untouched);
  EXPECT_EQ(TimeText(untouched.ShootDate), "2001-09-09 10:46:40");
  EXPECT_STREQ(untouched.GetCameraModel(), "NIKON E775");

  photo.SetRating(5);
  photo.SetRotate(1);
  photo.SetFileName("renamed.jpg");
  photo.SetFolderID(99);
  photo.SetShootDate(1'234'567'890);
  photo.SetCameraModel("my camera");
  const std::string guid = photo.szGUID;
  RefreshPhotoRecord(changed, photo);
  EXPECT_EQ(std::tuple(photo.byteRating, photo.byteRotate, photo.dwFolderID),
            std::tuple(5, 1, 99u));
  EXPECT_EQ(photo.ShootDate, 1'234'567'890);
  EXPECT_EQ(TimeText(photo.ExifShootDate), "2001-09-09 10:46:40");
  EXPECT_STREQ(photo.GetFileName(), "renamed.jpg");
  EXPECT_STREQ(photo.GetCameraModel(), "my camera");
  EXPECT_STREQ(photo.GetShooter(), "Kim");
  EXPECT_EQ(guid, photo.szGUID);
}

TEST(BoundedQueue, CancelWakesWhoWaitsAndDropsTheRest) {
  BoundedQueue<int> queue(1);
  queue.Push(1);
  std::jthread writer([&] { EXPECT_FALSE(queue.Push(2)); });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  queue.Cancel();
  EXPECT_EQ(queue.Pop(), std::nullopt);
  bool timed_out = true;
  EXPECT_EQ(queue.PopUntil(std::chrono::steady_clock::now(), timed_out), std::nullopt);
  EXPECT_FALSE(timed_out);
}

TEST(MemoryBudget, NeverGivesMoreThanItHas) {
  MemoryBudget budget(100);
  std::atomic<int> used = 0;
  std::atomic<int> most = 0;
  std::vector<std::jthread> users;
  for (const int need : {60, 60, 30, 1000}) {
    users.emplace_back([&, need] {
      for (int i = 0; i < 200; ++i) {
        const MemoryBudget::Share share(budget, static_cast<uint64_t>(need));
        most = std::max<int>(most, used += std::min(need, 100));
        used -= std::min(need, 100);
      }
    });
  }
  users.clear();
  EXPECT_LE(most, 100);
}

}  // namespace
}  // namespace vdsto
