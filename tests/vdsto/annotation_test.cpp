#include <gmock/gmock.h>

#include "import_fixture.h"

namespace {

using namespace vdsto_test;
using testing::HasSubstr;

/// What users write on photos, command by command. A line of a table is one command line; its
/// answer is the whole output, or part of the complaint when it fails.
class AnnotationTest : public ImportTest {
 protected:
  struct Step {
    std::vector<std::string> words;
    std::string answer;
    int code = 0;
    std::string_view input = "";
  };

  void SetUp() override {
    for (const char* name : {"가족/a.jpg", "가족/b.png", "x.jpg"}) WritePicture(Pictures(name));
    WriteExif(Pictures("가족/a.jpg"), {{"Exif.Image.Model", "Demo 1"}});
    WriteExif(Pictures("x.jpg"),
              {{"Exif.Image.Model", "Demo 1"}, {"Exif.Photo.LensModel", "28 mm"}});
    Import();
  }

  void Follow(const std::vector<Step>& steps) const {
    for (const Step& step : steps) {
      SCOPED_TRACE(testing::PrintToString(step.words));
      auto words = step.words;
      words.insert(words.begin(), {"--library", Library()});
      const Outcome outcome = RunVdsto(words, "", step.input);
      EXPECT_EQ(outcome.code, step.code) << outcome.err;
      if (step.code == 0) {
        EXPECT_EQ(outcome.out, step.answer);
      } else {
        EXPECT_THAT(outcome.err, HasSubstr(step.answer));
      }
    }
  }

  json Ask(std::vector<std::string> words) const { return Vdsto(std::move(words)).Json(); }
};

std::string Repeated(const std::string& text, int times) {
  std::string result;
  while (times-- > 0) result += text;
  return result;
}

TEST_F(AnnotationTest, TagsComeAreNamedAndGo) {
  const std::string longest = Repeated("😀", 64);
  Follow({
      {{"tag", "add", "Sea", "x.jpg", "-n"},
       "pictures/x.jpg\n1 photo would be tagged Sea, a new tag\n"},
      {{"tag", "ls"}, ""},
      {{"tag", "add", " 여행 ", "x.jpg"}, "1 photo tagged 여행, a new tag\n"},
      {{"tag", "add", "여행", "pictures", "pictures/가족"},
       "2 photos tagged 여행, 1 already was\n"},
      {{"tag", "add", "Sea", "-"}, "1 photo tagged Sea, a new tag\n", 0, "x.jpg\n"},
      {{"tag", "add", "sea", "**/a.jpg"}, "1 photo tagged Sea\n"},
      {{"tag", "ls"}, "2  Sea\n3  여행\n"},
      {{"tag", "of", "x.jpg", "b.png"},
       "pictures/x.jpg       Sea, 여행\npictures/가족/b.png  여행\n"},
      {{"tag", "rename", "sea", "SEA"}, "1 tag named SEA\n"},
      {{"tag", "rename", "SEA", "SEA"}, "0 tags named SEA, 1 already was\n"},
      {{"tag", "rename", "SEA", "여행"}, "vdsto tag merge 'SEA' --into '여행' makes one", 8},
      {{"tag", "remove", "sea", "pictures", "b.png"},
       "1 photo without the tag SEA, 1 already was\n"},
      {{"tag", "merge", "S*", "여행", "--into", "여행"}, "1 tag will be merged into 여행 (on 1", 8},
      {{"tag", "merge", "S*", "여행", "--into", "여행", "-y"},
       "1 tag merged into 여행 (on 1 photo)\n"},
      {{"tag", "add", longest, "x.jpg"}, "1 photo tagged " + longest + ", a new tag\n"},
      {{"tag", "add", longest + "x", "x.jpg"}, "has 65 characters, and 64 fit", 2},
      {{"tag", "add", "a,b", "x.jpg"}, "comma", 2},
      {{"tag", "add", " ", "x.jpg"}, "the tag's name is empty", 2},
      {{"tag", "remove", "바다", "x.jpg"}, "no tag 바다 in the catalogue: vdsto tag ls", 6},
      {{"tag", "delete", "여*", "-n"}, "여행\n1 tag would be deleted (on 3 photos)\n"},
      {{"tag", "delete", "여*"}, "1 tag will be deleted (on 3 photos): say --yes", 8},
      {{"tag", "delete", longest, "-y"}, "1 tag deleted (on 1 photo)\n"},
      {{"tag", "ls"}, "3  여행\n"},
  });
  EXPECT_EQ(Ask({"tag", "photos", "여행"}).size(), 3u);
  EXPECT_EQ(Ask({"info", "x.jpg"})["tags"], json({"여행"}));
}

TEST_F(AnnotationTest, ADeletedTagLeavesNothingAndIsToBeSent) {
  Follow({{{"tag", "add", "a", "x.jpg"}, "1 photo tagged a, a new tag\n"}});
  const std::string guid = Photos().at(Pictures("x.jpg"))["guid"];
  EXPECT_EQ(Ask({"sync", "pending"}).size(), 1u);
  Follow({{{"sync", "sent", "pictures", "-r"}, "1 photo noted as sent, 2 already were\n"},
          {{"sync", "pending"}, ""},
          {{"tag", "delete", "a", "-y"}, "1 tag deleted (on 1 photo)\n"},
          {{"sync", "pending"}, "tags  pictures/x.jpg\n"}});
  CRkPhotoDBManager catalogue;
  ASSERT_TRUE(catalogue.OpenDB(Catalogue().c_str(), ""));
  ASSERT_TRUE(catalogue.AddTag(guid.c_str(), 1, false)) << "a link without a tag";
  catalogue.CloseDB();
  Follow({{{"tag", "add", "b", "pictures/가족"}, "2 photos tagged b, a new tag\n"},
          {{"tag", "of", "x.jpg"}, "pictures/x.jpg  -\n"}});
}

TEST_F(AnnotationTest, TitlesAndDescriptionsAreNotLostUnasked) {
  Follow({
      {{"title", "바다's %d", "x.jpg", "b.png"}, "2 photos titled '바다's %d'\n"},
      {{"title", "바다's %d", "x.jpg"}, "0 photos titled '바다's %d', 1 already was\n"},
      {{"title", "산", "pictures", "-r"}, "titled '산' (2 in place of another): say --yes", 8},
      {{"title", "산", "x.jpg", "**/a.jpg", "-y"},
       "2 photos titled '산' (1 in place of another)\n"},
      {{"title", "", "x.jpg"}, "1 photo will be left without a title: say --yes", 8},
      {{"title", "", "pictures", "-r", "-y"}, "3 photos left without a title\n"},
      {{"title", Repeated("가", 201), "x.jpg"}, "the title has 201 characters, and 200 fit", 2},
      {{"title", Repeated("가", 200), "x.jpg"}, "1 photo titled '" + Repeated("가", 200) + "'\n"},
      {{"describe", "줄\n둘", "x.jpg"}, "1 photo described as '줄\\x0A둘'\n"},
  });
  const json info = Ask({"info", "x.jpg"});
  EXPECT_EQ(info["title"], Repeated("가", 200));
  EXPECT_EQ(info["description"], "줄\n둘");
}

TEST_F(AnnotationTest, PhotosAreTurnedAndFlagged) {
  Follow({
      {{"rotate", "left", "x.jpg"}, "1 photo turned by 270°\n"},
      {{"rotate", "180", "x.jpg", "**/b.png"}, "2 photos turned by 180°\n"},
      {{"rotate", "--to", "right", "pictures", "-r", "-n"},
       "pictures/가족/a.jpg\npictures/가족/b.png\n2 photos would be turned to 90°, 1 already is\n"},
      {{"rotate", "--to", "right", "pictures", "-r"}, "2 photos turned to 90°, 1 already was\n"},
      {{"rotate", "right", "x.jpg"}, "1 photo turned by 90°\n"},
      {{"rotate", "0", "x.jpg"}, "--to 0 takes all turns back", 2},
      {{"rotate", "45", "x.jpg"}, "TURN is right, left", 2},
      {{"flag", "set", "7", "x.jpg"}, "1 photo flagged 7\n"},
      {{"flag", "set", "0", "pictures", "-r"}, "3 photos flagged 0\n"},
      {{"flag", "clear", "0", "**/?.jpg"}, "2 photos without flag 0\n"},
      {{"flag", "show", "x.jpg", "b.png"}, "7  pictures/x.jpg\n0  pictures/가족/b.png\n"},
      {{"tag", "add", "t1", "x.jpg", "b.png"}, "2 photos tagged t1, a new tag\n"},
      {{"tag", "add", "t2", "b.png"}, "1 photo tagged t2, a new tag\n"},
      {{"tagged", "-0", "--all", "t1", "t2"}, std::string("pictures/가족/b.png\0", 22)},
      {{"tagged", "-0", "T1", "--flag", "7"}, std::string("pictures/x.jpg\0", 15)},
      {{"tagged", "t1", "--flag", "8"}, "--flag is a number from 0 to 7", 2},
      {{"tagged", "nope"}, "no tag nope", 6},
      {{"flag", "set", "8", "x.jpg"}, "FLAG is a number from 0 to 7", 2},
  });
  const auto photos = Photos();
  EXPECT_EQ(photos.at(Pictures("x.jpg"))["rotate"], 2);
  EXPECT_EQ(photos.at(Pictures("가족/a.jpg"))["rotate"], 1);
  EXPECT_EQ(photos.at(Pictures("가족/b.png"))["rotate"], 1);
}

TEST_F(AnnotationTest, CamerasAreMetAndAdded) {
  Follow({{{"camera", "add", "My 1", "-n"}, "My 1\n1 name would be added to your models\n"},
          {{"camera", "add", "My 1", "my 1"}, "1 name added to your models, 1 already was\n"},
          {{"camera", "add", "--lens", "50 mm"}, "1 name added to your lenses\n"},
          {{"camera", "add", Repeated("x", 65)}, "the name has 65 characters", 2},
          {{"camera", "ls"},
           "model  met  Demo 1\nmodel  own  My 1\nlens   met  28 mm\nlens   own  50 mm\n"}});
}

TEST_F(AnnotationTest, NotificationsAreShownAndReset) {
  CRkPhotoDBManager catalogue;
  ASSERT_TRUE(catalogue.OpenDB(Catalogue().c_str(), ""));
  catalogue.ResetAllNotify();
  catalogue.AddNotifyDate_List(20, 3);
  catalogue.AddNotifyTrash_List(static_cast<const char*>(nullptr), 1);
  catalogue.CloseDB();
  Follow({{{"notify", "show"}, "date   list    3  20\ntrash  list  255  all\n"},
          {{"notify", "reset", "-n"},
           "date list 20\ntrash list all\n2 notifications would be reset\n"},
          {{"notify", "reset"}, "2 notifications reset\n"},
          {{"notify", "show"}, ""}});
}

}  // namespace
