#include <gmock/gmock.h>

#include "import_fixture.h"

/// The commands that keep a catalogue in order: trash, mv, mkdir, rmdir, folder, room, album,
/// reset.
namespace {

using namespace vdsto_test;
using testing::HasSubstr;

class ChangeTest : public ImportTest {
 protected:
  using Words = std::vector<std::string>;

  struct Step {
    Words words;
    int code;
    const char* text;  ///< part of what it says
    std::string_view input = "";
  };

  void SetUp() override {
    for (const char* name : {"a.jpg", "b.jpg", "sub/a.jpg", "sub/c.jpg"})
      WritePicture(Pictures(name));
    ASSERT_EQ(Counts(Import()), "4 0 0");
  }

  Outcome Run(Words words, std::string_view input = "") const {
    words.insert(words.begin(), {"--library", Library()});
    return RunVdsto(words, "", input);
  }

  void RunAll(const std::vector<Step>& steps) const {
    for (const Step& step : steps) {
      SCOPED_TRACE(testing::PrintToString(step.words));
      const Outcome outcome = Run(step.words, step.input);
      EXPECT_EQ(outcome.code, step.code) << outcome.err;
      EXPECT_THAT(step.code == 0 ? outcome.out : outcome.err, HasSubstr(step.text));
    }
  }

  std::string GuidOf(const std::string& photo) const {
    return Vdsto({"info", photo}).Json()["guid"];
  }
};

TEST_F(ChangeTest, ARestoredPhotoHasWhatItHad) {
  const std::string guid = GuidOf("pictures/sub/a.jpg");
  RunAll({{{"rate", "4", "pictures/sub/a.jpg"}, 0, "1 photo rated"},
          {{"album", "create", "여행"}, 0, "1 album created"},
          {{"album", "add", "여행", "pictures/sub/a.jpg"}, 0, "added to 갤러리/여행"}});
  {
    CRkPhotoDBManager catalogue;
    ASSERT_TRUE(catalogue.OpenDB(Catalogue().c_str(), ""));
    catalogue.AddTagInfo("바다", 7);
    catalogue.AddTag(guid.c_str(), 7, false);
    catalogue.SetFlag(guid.c_str(), 3, true);
  }
  const json before = Vdsto({"info", guid}).Json();
  RunAll({{{"trash", "put", "-n", "pictures/sub"}, 0, "pictures/sub/c.jpg\n2 photos would be put"},
          {{"trash", "put", "pictures/sub"}, 0, "2 photos put into the trash"},
          {{"trash", "put", guid}, 0, "1 already was"},
          {{"album", "ls"}, 0, "0  갤러리/여행"},
          {{"trash", "ls"}, 0, "pictures/sub/a.jpg"},
          {{"mv", guid, "pictures"}, 8, "is in the trash"},
          {{"mv", "pictures", "사진"}, 0, "1 folder moved to 사진"},
          {{"rmdir", "사진/sub"}, 0, "1 folder removed"}});
  const json summary = Import();
  EXPECT_EQ(Counts(summary), "0 0 2") << "what is in the trash is not imported again";
  EXPECT_EQ(summary["in_trash"], 2);
  RunAll({{{"trash", "restore", "사진/nope.jpg"}, 6, "vdsto trash ls shows"},
          {{"trash", "restore", "--into", "사진", "사진/sub/a.jpg"}, 8, "사진/a.jpg is there"},
          {{"trash", "restore", "사진/sub/a*"}, 0, "1 photo restored"}});
  json after = Vdsto({"info", guid}).Json();
  EXPECT_EQ(after["folder"], "사진/sub");
  for (const char* place : {"folder", "folder_id"}) after[place] = before.at(place);
  EXPECT_EQ(after, before);
  CRkPhotoDBManager catalogue;
  ASSERT_TRUE(catalogue.OpenDB(Catalogue().c_str(), ""));
  PHOTOINFO photo;
  ASSERT_TRUE(catalogue.GetPhotoInfo(guid.c_str(), photo));
  EXPECT_EQ(catalogue.GetFlag(guid.c_str(), 3), 1);
  EXPECT_TRUE(catalogue.IsTagged(guid.c_str(), 7));
  EXPECT_EQ(catalogue.GetAlbumNames(guid.c_str()), "갤러리/여행");
  EXPECT_EQ(catalogue.GetTrashPhotoCount(), 1);
}

TEST_F(ChangeTest, AnEmptiedTrashLeavesNothing) {
  const std::string guid = GuidOf("pictures/a.jpg");
  RunAll({{{"album", "create", "여행"}, 0, ""},
          {{"album", "add", "여행", guid}, 0, ""},
          {{"trash", "put", guid, "pictures/b.jpg"}, 0, "2 photos"},
          {{"trash", "empty"}, 8, "2 photos will be deleted for good: say --yes"},
          {{"trash", "empty", "-n", "a.jpg"}, 0, "pictures/a.jpg\n1 photo would be"},
          {{"trash", "empty", "-y", "a.jpg"}, 0, "1 photo deleted for good"}});
  EXPECT_EQ(Vdsto({"trash", "ls"}).Json().size(), 1u);
  EXPECT_EQ(Vdsto({"store", "stat"}).Json()["images"], 3) << "its thumbnail went too";
  {
    CRkPhotoDBManager catalogue;
    ASSERT_TRUE(catalogue.OpenDB(Catalogue().c_str(), ""));
    EXPECT_EQ(catalogue.GetTrashPhotoCount(), 1);
    EXPECT_EQ(catalogue.GetAlbumNames(guid.c_str()), "");
  }
  EXPECT_EQ(Counts(Import()), "1 0 2") << "the file is a new photo";
}

TEST_F(ChangeTest, MovedPhotosAndFoldersAreImportedOnce) {
  RunAll({{{"mkdir", "best/2024"}, 6, "say --parents"},
          {{"mkdir", "-p", "best/2024", "-"}, 0, "2 folders made, 1 already was", "x\npictures\n"},
          {{"mkdir", "best"}, 8, "is there already"},
          {{"mkdir", "best/.."}, 2, "is no name"},
          {{"mv", "pictures/a.jpg", "pictures/b.jpg", "best"}, 0, "2 photos moved to best"},
          {{"mv", "pictures/sub/a.jpg", "best"}, 8, "best/a.jpg is there already"},
          {{"mv", "best/b.jpg", "best/c.jpg"}, 0, "1 photo moved to best/c.jpg"},
          {{"mv", "best/*.jpg", "nope"}, 6, "vdsto mkdir makes it"},
          {{"mv", "best", "best/2024"}, 8, "cannot go into itself"},
          {{"mv", "best", "Best"}, 0, "1 folder moved to Best"},
          {{"mv", "x", "Best/2024", "공용 폴더"}, 0, "2 folders moved to 공용 폴더"},
          {{"mv", "개인 폴더", "x"}, 8, "own folders"},
          {{"rmdir", "Best"}, 8, "say --recursive"}});
  EXPECT_EQ(Counts(Import()), "0 0 4");
  WritePicture(Pictures("a.jpg"), 80, 60, 2);
  WritePicture(Pictures("new.jpg"));
  EXPECT_EQ(Counts(Import()), "1 1 3");
  EXPECT_EQ(Vdsto({"info", "Best/a.jpg"}).Json()["width"], 80);
  EXPECT_EQ(Vdsto({"info", "new.jpg"}).Json()["folder"], "pictures");
  RunAll(
      {{{"rmdir", "-r", "Best"}, 8, "1 folder will be removed, with 2 photos put into the trash"},
       {{"rmdir", "-ry", "Best", "pictures/sub"}, 0, "2 folders removed, with 4 photos"},
       {{"trash", "restore", "*"}, 0, "4 photos restored"}});
  EXPECT_EQ(Vdsto({"info", "Best/c.jpg"}).Json()["original"], Pictures("b.jpg"));
}

TEST_F(ChangeTest, FoldersSayWhatTheyAre) {
  WriteFile(temp_ / "word", "secret\n");
  WriteFile(temp_ / "quote", "it's\n");
  RunAll({{{"folder", "secure", "--from", temp_ / "quote", "pictures"}, 2, "no quote"},
          {{"folder", "secure", "--from", temp_ / "word", "pictures"}, 0, "made secure"},
          {{"folder", "share", "pictures", "pictures/sub"}, 0, "2 folders shared"},
          {{"folder", "share", "pictures/*"}, 0, "0 folders shared, 1 already was"},
          {{"folder", "limit", "none", "pictures"}, 2, "LIMIT is free"},
          {{"folder", "limit", "upload-only", "-r", "pictures"}, 0, "made upload-only"},
          {{"folder", "active", "pictures"}, 0, "1 folder made active"}});
  const json shown = Vdsto({"folder", "show", "pictures", "pictures/sub"}).Json();
  const auto facts = [](const json& folder) {
    return json{folder["secure"], folder["has_password"], folder["shared"],
                folder["limit"],  folder["active"],       folder["photos"]};
  };
  EXPECT_EQ(facts(shown[0]), json({true, true, true, "upload-only", true, 2}));
  EXPECT_EQ(facts(shown[1]), json({false, false, true, "upload-only", false, 2}));
  RunAll({{{"folder", "secure", "--off", "pictures"}, 0, "made open"},
          {{"folder", "show", "pictures"}, 0, "has password    no"}});
}

TEST_F(ChangeTest, RoomsAndAlbumsAreKept) {
  RunAll({{{"room", "create", "집", "학교"}, 0, "2 rooms created"},
          {{"room", "create", "집"}, 8, "there is a room 집 already"},
          {{"room", "rename", "학교", "집"}, 8, "already"},
          {{"room", "rename", "학교", "School"}, 0, "renamed School"},
          {{"album", "create", "집/a/b"}, 6, "no album 집/a"},
          {{"album", "create", "-p", "집/a/b", "여행"}, 0, "2 albums created"},
          {{"album", "create", "nope/a", "집/c"}, 6, "no album nope"},
          {{"album", "create", "집/A"}, 8, "already"},
          {{"album", "add", "집", "b.jpg"}, 2, "is a room"},
          {{"album", "add", "집/a/b", "pictures/*.jpg"}, 0, "2 photos added to 집/a/b"},
          {{"album", "add", "여행", "b.jpg", "c.jpg"}, 0, "2 photos added"},
          {{"album", "rename", "집/a", "Z"}, 0, "renamed Z"},
          {{"album", "ls", "집/Z/b"}, 0, "pictures/b.jpg"},
          {{"album", "path", "b.jpg"}, 0, "집/Z/b"},
          {{"album", "remove", "집/Z/b", "b.jpg", "c.jpg"}, 0, "1 photo removed from 집/Z/b, 1 al"},
          {{"album", "delete", "집/Z"}, 8, "2 albums will be deleted"},
          {{"album", "delete", "-y", "집/Z"}, 0, "2 albums deleted"},
          {{"room", "delete", "-y", "갤러리"}, 8, "cannot be deleted"},
          {{"room", "delete", "-y", "집", "School"}, 0, "2 rooms deleted"}});
  const json albums = Vdsto({"album", "ls"}).Json();
  EXPECT_EQ(albums, json::array({{{"id", 3}, {"photos", 2}, {"path", "갤러리/여행"}}}));
  RunAll({{{"reset", "nope"}, 2, "no table nope"},
          {{"reset", "albums", "photos", "-n"}, 0, "albums: 1\nphotos: 4\n2 tables would be"},
          {{"reset", "albums"}, 8, "1 table will be emptied (albums: 1): say --yes"},
          {{"reset", "album-photos", "albums", "-y"},
           0,
           "2 tables emptied (album-photos: 2, albums: 1)"},
          {{"album", "ls", "여행"}, 6, "no album 여행"}});
}

}  // namespace
