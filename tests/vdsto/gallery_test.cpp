#include <gmock/gmock.h>

#include <filesystem>

#include "import_fixture.h"

namespace {

using namespace vdsto_test;
using testing::HasSubstr;
using testing::Not;
namespace fs = std::filesystem;

class GalleryTest : public ImportTest {
 protected:
  std::string Place(const std::string& name = "") const { return temp_ / ("gallery" + name); }

  Outcome Gallery(std::vector<std::string> words) const {
    words.insert(words.begin(), {"gallery", "-o", Place()});
    return Vdsto(std::move(words));
  }

  void ExpectRefused(const std::vector<std::string>& words, int code, const char* reason) const {
    const Outcome outcome = Gallery(words);
    EXPECT_EQ(outcome.code, code);
    EXPECT_THAT(outcome.err, HasSubstr(reason));
  }

  void ImportThree() const {
    for (const char* name : {"a.jpg", "b.jpg"}) WritePicture(Pictures(name), 600, 400);
    WriteFile(Pictures("broken.jpg"), "");
    Import();
  }
};

TEST_F(GalleryTest, HoldsThumbnailsAsTheyLieInTheStoreAndTextsThatAreNoMarkup) {
  ImportThree();
  ASSERT_EQ(Vdsto({"title", "</script>\u2028<b>'\"&", "a.jpg"}).code, 0);
  ASSERT_EQ(Vdsto({"rotate", "right", "b.jpg"}).code, 0);
  const json told = Gallery({"pictures", "--title", "{{title}}<\"&'"}).Json();
  EXPECT_EQ(told, json({{"folder", Place()}, {"photos", 3}, {"thumbnails", 2}}));
  ASSERT_EQ(Vdsto({"thumb", "a.jpg", "-o", temp_ / "a"}).code, 0);
  EXPECT_EQ(ReadFile(Place("/thumbs/0/0.jpg")), ReadFile(temp_ / "a"));
  VipsImage* turned = vips_image_new_from_file(Place("/thumbs/0/1.jpg").c_str(), nullptr);
  ASSERT_NE(turned, nullptr);
  EXPECT_GT(vips_image_get_height(turned), vips_image_get_width(turned));
  g_object_unref(turned);
  const std::string data = ReadFile(Place("/data/0.js"));
  EXPECT_THAT(data, HasSubstr(R"("\u003c/script>\u2028\u003cb>'\"&")"));
  EXPECT_THAT(data + ReadFile(Place("/data/index.js")), Not(HasSubstr("<")));
  EXPECT_THAT(ReadFile(Place("/index.html")), HasSubstr("<h1>{{title}}&lt;&quot;&amp;&#39;</h1>"));
  EXPECT_EQ(Gallery({"--find", "B", "--force"}).Json()["photos"], 2);
  ExpectRefused({"--force"}, 2, "--find TEXT or --tag TAG");
}

TEST_F(GalleryTest, TakesTheFolderOnlyWhenNothingElseIsInIt) {
  ImportThree();
  ASSERT_EQ(Vdsto({"tag", "add", "바다", "a.jpg"}).code, 0);
  ASSERT_EQ(Vdsto({"tag", "add", "섬", "pictures"}).code, 0);
  ExpectRefused({"pictures", "-t", "바다", "-t", "none"}, 6, "none");
  EXPECT_EQ(Gallery({"-t", "바다"}).Json()["photos"], 1);
  fs::remove_all(Place());
  EXPECT_FALSE(fs::exists(Place()));
  WriteFile(Place("/.vdsto-gallery.new/data/1.js"), "of a run that was killed");
  EXPECT_EQ(Gallery({"pictures", "-t", "바다", "-t", "섬"}).Json()["photos"], 1);
  ExpectRefused({"pictures"}, 8, "is a gallery already: --force replaces it");
  EXPECT_EQ(Gallery({"pictures", "--force"}).Json()["photos"], 3);
  EXPECT_FALSE(fs::exists(Place("/.vdsto-gallery.new")));
  for (const char* name : {"/mine.txt", "/data/mine.js", "/thumbs/0/me.jpg", "/assets/x/y"}) {
    WriteFile(Place(name), "mine");
    ExpectRefused({"pictures", "--force"}, 8, name + 1);
    fs::remove(Place(name));
  }
  WriteFile(Place("/vdsto-gallery.json"), R"({"program": 5})");
  ExpectRefused({"pictures", "--force"}, 8, "is not empty and no gallery");
  fs::remove_all(Place());
  WriteFile(Place(), "a file");
  ExpectRefused({"pictures"}, 2, "is no folder");
  EXPECT_EQ(ReadFile(Place()), "a file");
}

}  // namespace
