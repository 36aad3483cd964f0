#include <atomic>
#include <thread>

#include "catalogue_test.h"

namespace vdstomgr {
namespace {

using ThreadsTest = CatalogueTest;

constexpr int kRounds = 150;

/// Adds photos, reads them back and changes folders; false as soon as an answer is wrong.
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
        catalogue.GetSubFolder2(kPublicRoot, ids, false) > 3)
      return false;
    catalogue.SetTime(i);
    catalogue.GetDBTime();
  }
  return true;
}

TEST_F(ThreadsTest, OneCatalogueServesSeveral) {
  std::atomic<int> done = 0;
  {
    std::vector<std::jthread> threads;
    for (int worker = 1; worker <= 3; ++worker) {
      AddFolder(static_cast<DWORD>(worker), 0, "w");
      threads.emplace_back([&, worker] { done += Work(catalogue_, worker); });
    }
  }
  EXPECT_EQ(done, 3);
  EXPECT_EQ(catalogue_.GetPhotoCount(), 3 * kRounds);
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
