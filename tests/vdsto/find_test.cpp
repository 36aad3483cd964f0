#include <gmock/gmock.h>

#include <algorithm>

#include "import_fixture.h"

/// The commands that search: find, recent, biggest, reindex; and that others keep the search
/// database in step.
namespace {

using namespace vdsto_test;

class FindTest : public ImportTest {
 protected:
  void SetUp() override {
    WritePicture(Pictures("제주도 여행/바다 1.jpg"), 64, 48);
    WritePicture(Pictures("제주도 여행/Sea [2].jpg"), 640, 480, 2);
    WritePicture(Pictures("sub/전주.jpg"), 32, 24, 3);
    ASSERT_EQ(Counts(Import()), "3 0 0");
  }

  /// The paths that a command finds, sorted, joined by ','; folders end with '/'.
  std::string Found(std::vector<std::string> words, bool sorted = true) const {
    const auto found = Vdsto(words).Json();
    std::vector<std::string> paths;
    for (const auto& folder : found["folders"]) paths.push_back(std::string(folder["path"]) + "/");
    for (const auto& photo : found["photos"])
      paths.push_back(std::string(photo["folder"]) + "/" + std::string(photo["name"]));
    if (sorted) std::ranges::sort(paths);
    std::string text;
    for (const std::string& path : paths) text += (text.empty() ? "" : ",") + path;
    return text;
  }
};

TEST_F(FindTest, FindsByWordsInitialsAndOrder) {
  const std::string sea = "pictures/제주도 여행/Sea [2].jpg",
                    shore = "pictures/제주도 여행/바다 1.jpg", city = "pictures/sub/전주.jpg",
                    trip = "pictures/제주도 여행/";
  EXPECT_EQ(Found({"find", "sEa"}), sea);
  EXPECT_EQ(Found({"find", "1", "바다"}), shore);
  EXPECT_EQ(Found({"find", "ㅈㅈ"}), city + "," + trip);
  EXPECT_EQ(Found({"find", "ㅈㅈㄷ"}), trip);
  EXPECT_EQ(Found({"find", "\u110C\u1166\u110C\u116E"}), trip);  // as some systems write names
  EXPECT_EQ(Found({"find", "jpg", "--folder", "pictures/sub"}), city);
  EXPECT_EQ(Found({"find", "jpg", "--limit", "1"}).find(','), std::string::npos);
  EXPECT_EQ(Found({"find", "no such name"}), "");
  EXPECT_EQ(Found({"biggest"}, false), sea + "," + shore + "," + city);
  EXPECT_EQ(Found({"recent", "--since", "2000", "--until", "2001-02"}), "");
  EXPECT_EQ(Vdsto({"find", "jpg", "-0", "--folder", "pictures/sub"}).out,
            city + std::string(1, '\0'));
  for (const std::vector<std::string>& wrong : {std::vector<std::string>{"find"},
                                                {"find", "a", "--limit", "0"},
                                                {"recent", "--since", "2004-13"},
                                                {"recent", "--until", "yesterday"},
                                                {"biggest", "--rating", "6"}})
    EXPECT_EQ(Vdsto(wrong).code, 2) << testing::PrintToString(wrong);
}

TEST_F(FindTest, FiltersCombine) {
  EXPECT_EQ(Vdsto({"rate", "4", "pictures/sub/전주.jpg", "pictures/제주도 여행/바다 1.jpg"}).code,
            0);
  EXPECT_EQ(Found({"find", "jpg", "--rating", "4", "--folder", "pictures/sub"}),
            "pictures/sub/전주.jpg");
  EXPECT_EQ(Found({"recent", "--rating", "5"}), "");
  EXPECT_EQ(Found({"recent", "--camera", "none"}), "");
}

TEST_F(FindTest, WhatCommandsChangeIsFound) {
  const auto run = [&](const std::vector<std::string>& words) {
    EXPECT_EQ(Vdsto(words).code, 0) << testing::PrintToString(words);
  };
  run({"mv", "pictures/sub/전주.jpg", "pictures/제주도 여행/경주.jpg"});
  EXPECT_EQ(Found({"find", "주.jpg"}), "pictures/제주도 여행/경주.jpg");
  run({"mv", "pictures/제주도 여행", "pictures/섬"});
  EXPECT_EQ(Found({"find", "섬"}), "pictures/섬/");
  EXPECT_EQ(Found({"find", "제주"}), "");
  EXPECT_EQ(Found({"find", "sea"}), "pictures/섬/Sea [2].jpg");
  run({"mkdir", "pictures/새 폴더"});
  EXPECT_EQ(Found({"find", "새"}), "pictures/새 폴더/");
  run({"rmdir", "pictures/새 폴더"});
  EXPECT_EQ(Found({"find", "새"}), "");
  run({"trash", "put", "pictures/섬/Sea [2].jpg"});
  EXPECT_EQ(Found({"find", "sea"}), "");
  run({"trash", "restore", "Sea [2].jpg"});
  EXPECT_EQ(Found({"find", "sea"}), "pictures/섬/Sea [2].jpg");
  WritePicture(Pictures("sub/새로운.jpg"), 16, 16, 9);
  EXPECT_EQ(Counts(Import()), "1 0 3");
  EXPECT_EQ(Found({"find", "ㅅㄹㅇ"}), "pictures/sub/새로운.jpg");
}

TEST_F(FindTest, TheCopyIsMadeWhenItIsMissingOrDoesNotMatch) {
  const std::string copy = std::filesystem::path(Catalogue()).parent_path() / "search.vdb";
  ASSERT_TRUE(std::filesystem::exists(copy));
  std::filesystem::remove(copy);
  EXPECT_EQ(Found({"find", "sea"}), "pictures/제주도 여행/Sea [2].jpg");
  {
    CRkSearchDBManager database;
    ASSERT_TRUE(database.OpenDB(copy.c_str(), ""));
    database.DeletePhoto(1, "none");
    vdstomgr::PhotoArray all;
    database.SearchFileName("sea", all, 9);
    database.DeletePhoto(all[0].szGUID);
  }
  EXPECT_EQ(Found({"find", "sea"}), "pictures/제주도 여행/Sea [2].jpg");
  EXPECT_EQ(Vdsto({"reindex"}).Json()["photos"], 3);
}

}  // namespace
