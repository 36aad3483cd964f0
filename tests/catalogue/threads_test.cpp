#include <atomic>
#include <thread>

#include "catalogue_test.h"

namespace vdstomgr {
namespace {

using ThreadsTest = CatalogueTest;

constexpr int kRounds = 150;

/// Adds photos, reads them back, tags them and changes folders; false as soon as an answer is
/// wrong.
bool Work(CRkPhotoDBManager& catalogue, int worker) {
  for (int i = 0; i < kRounds; ++i) {
    PHOTOINFO photo, read;
    photo.SetGUID((std::to_string(worker) + "-" + std::to_string(i)).c_str());
    photo.SetFileName("n'");
    const auto folder = static_cast<DWORD>(worker);
    photo.SetFolderID(folder);
    if (!catalogue.AddPhotoInfo(photo, false) || !catalogue.GetPhotoInfo(photo.szGUID, read))
      return false;
    CDWordArray ids;
    if (!catalogue.MoveFolder(folder, i % 2 ? kPublicRoot : 0) ||
        catalogue.GetSubFolder2(kPublicRoot, ids, false) > 4)
      return false;
    if (!catalogue.AddTag(photo.szGUID, folder, true) || !catalogue.SetTitle(photo.szGUID, "t"))
      return false;
    catalogue.AddNotifyFolder_List(folder, static_cast<BYTE>(1 << i % 8));
    if (i % 16 == 0) catalogue.MovePhotoSyncFlag();
    catalogue.SetTime(i);
    catalogue.GetDBTime();
  }
  return true;
}

TEST_F(ThreadsTest, OneCatalogueServesSeveral) {
  std::atomic<int> done = 0;
  {
    std::vector<std::jthread> threads;
    for (int worker = 1; worker <= 4; ++worker) {
      AddFolder(static_cast<DWORD>(worker), 0, "w");
      threads.emplace_back([&, worker] { done += Work(catalogue_, worker); });
    }
  }
  EXPECT_EQ(done, 4);
  EXPECT_EQ(catalogue_.GetPhotoCount(), 4 * kRounds);
  catalogue_.MovePhotoSyncFlag();
  PhotoSyncArray pending;
  EXPECT_TRUE(catalogue_.GetPhotoSyncAllInfo(pending, 5 * kRounds));
  EXPECT_EQ(pending.GetSize(), 4 * kRounds);
  EXPECT_THAT(Ask("SELECT dwTagID, COUNT(*) FROM PhotoTag GROUP BY dwTagID"),
              testing::ElementsAre("1|150", "2|150", "3|150", "4|150"));
  EXPECT_THAT(Ask("SELECT byteType FROM NotifyFolder_List"),
              testing::ElementsAre("255", "255", "255", "255"));
}

TEST_F(ThreadsTest, TwoCataloguesShareOneFile) {
  OpenCatalogue other;
  ASSERT_TRUE(other.OpenDB(file_.c_str(), ""));
  for (const DWORD id : {1u, 2u}) AddFolder(id, 0, "w");
  std::atomic<int> done = 0;
  {
    std::jthread first([&] { done += Work(catalogue_, 1); });
    std::jthread second([&] { done += Work(other, 2); });
  }
  EXPECT_EQ(done, 2);
  EXPECT_EQ(other.GetPhotoCount(), 2 * kRounds);
}

}  // namespace
}  // namespace vdstomgr
