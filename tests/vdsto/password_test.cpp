#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <random>
#include <thread>

#include "import_fixture.h"

namespace vdsto_test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class PasswordTest : public ImportTest {
 protected:
  /// Sets, changes or (with an empty `to`) removes the password.
  std::vector<std::string> Change(const std::string& to) const {
    if (to.empty()) return {"password", "--remove"};
    WriteFile(temp_ / "new", to + "\n");
    return {"password", "--new-password-file", temp_ / "new"};
  }
  int Run(std::vector<std::string> words, const std::string& password) const {
    const Outcome outcome = Vdsto(std::move(words), password);
    EXPECT_THAT(outcome.code, testing::AnyOf(0, 4, 7, 8)) << outcome.err;
    return outcome.code;
  }
  void MakePictures(int count = 3) const {
    for (int i = 0; i < count; ++i)
      WritePicture(Pictures("secret-" + std::to_string(i) + ".jpg"), 64, 48, i + 1);
  }
  std::string Key(int photo, const std::string& password) const {
    const auto photos = Vdsto({"ls", "pictures"}, password).Json()["photos"];
    return photos[static_cast<size_t>(photo)]["guid"].get<std::string>() + ".400.jpg";
  }
  /// Of all photos; "" for one that cannot be had.
  std::vector<std::string> Thumbnails(const std::string& password, int count = 3) const {
    std::vector<std::string> images;
    for (int i = 0; i < count; ++i) {
      const std::string name = Pictures("secret-" + std::to_string(i) + ".jpg");
      const Outcome outcome = Vdsto({"thumb", name, "-o", "-"}, password);
      images.push_back(outcome.code == 0 ? outcome.out : "");
    }
    return images;
  }
  /// Does any file of the library show a name, an image or a database that is not encrypted?
  bool Shows(const std::string& image) const {
    for (const auto& entry : fs::directory_iterator(Library())) {
      const std::string bytes = ReadFile(entry.path().string());
      for (const std::string& sign :
           {std::string("secret"), std::string("SQLite format"), image.substr(0, 24)})
        if (bytes.find(sign) != std::string::npos) return true;
    }
    return false;
  }
  void Edit(const std::function<void(CRkPhotoImageStorage&)>& edit) const {
    CRkPhotoImageStorage store;
    ASSERT_TRUE(store.OpenFile(Store().c_str()));
    edit(store);
  }
  std::string Stored(const std::string& key) const {
    CBinData data;
    Edit([&](auto& store) { EXPECT_TRUE(store.GetImage(key.c_str(), data)); });
    return {reinterpret_cast<const char*>(data.GetData()), static_cast<size_t>(data.GetLength())};
  }
  void Put(const std::string& key, const std::string& image) const {
    Edit([&](auto& store) {
      EXPECT_TRUE(store.SetImage(key.c_str(), reinterpret_cast<const BYTE*>(image.data()),
                                 static_cast<int>(image.size())));
    });
  }
};

TEST_F(PasswordTest, OneThatCannotBeReliedOnIsRefusedWhenItIsNew) {
  MakePictures(1);
  const struct {
    std::string password;
    const char* reason;
  } cases[] = {{"", "is empty"},
               {"\n", "is empty"},
               {std::string("\0x", 2), "is empty"},
               {std::string("x\0y", 3), "NUL"},
               {"\xff\xfe", "UTF-8"},
               {std::string(21, 'a'), "first 20 characters"},
               {"가나다라마바사아자차1", "first 10 characters"}};
  for (const auto& [password, reason] : cases) {
    WriteFile(temp_ / "file", password);
    const Outcome outcome = Vdsto({"import", "--password-file", temp_ / "file", Pictures()});
    EXPECT_EQ(outcome.code, 2) << password;
    EXPECT_THAT(outcome.err, HasSubstr(reason));
    EXPECT_FALSE(fs::exists(Library()));
  }
  const auto with_empty_variable = [&] {
    setenv("VDSTO_PASSWORD", "", 1);
    return execl(VDSTO_PROGRAM, "vdsto", "--library", Library().c_str(), "import",
                 Pictures().c_str(), nullptr);
  };
  EXPECT_EQ(RunAtTerminal(with_empty_variable, "never", "").outcome.code, 2);
  EXPECT_FALSE(fs::exists(Library()));
  EXPECT_EQ(Vdsto({"import", Pictures()}, "가나다라마바사아자차").code, 0);

  fs::remove_all(Library());
  fs::create_directories(Library());
  const std::string longer(25, 'a');
  ASSERT_TRUE(CRkPhotoDBManager().CreateDB(Catalogue().c_str(), longer.c_str()));
  for (const std::string& good : {longer, longer.substr(0, 20)})
    EXPECT_EQ(Vdsto({"import", Pictures()}, good).code, 0) << "as before";
}

TEST_F(PasswordTest, IsSetChangedAndRemovedAndHidesImagesToo) {
  MakePictures();
  Import();
  const auto images = Thumbnails("");
  ASSERT_NE(images[0], "");
  ASSERT_TRUE(Shows(images[0]));
  std::string password, sealed;
  for (const std::string next : {"첫째", "second", ""}) {
    ASSERT_EQ(Run(Change(next), password), 0);
    EXPECT_EQ(Run({"stat"}, password), 4) << "the old one";
    EXPECT_EQ(Thumbnails(next), images);
    EXPECT_EQ(Run({"check"}, next), 0);
    EXPECT_EQ(Run({"store", "compact"}, next), 0);
    EXPECT_EQ(Shows(images[0]), next.empty());
    EXPECT_EQ(Counts(Vdsto({"import", Pictures()}, next).Json()), "0 0 3") << "facts are kept";
    if (next == "second") {
      EXPECT_EQ(Stored(Key(0, next)), sealed) << "not encrypted anew";
    }
    sealed = Stored(Key(0, next));
    password = next;
  }
  EXPECT_EQ(ReadFile(Catalogue()).find("VdstoImageKey"), std::string::npos);
  EXPECT_EQ(Vdsto({"password", "--remove"}).code, 2) << "there is none";

  CRkPhotoDBManager somebody;
  ASSERT_TRUE(somebody.OpenDB(Catalogue().c_str(), ""));
  EXPECT_EQ(Run(Change("third"), ""), 8);
  somebody.CloseDB();
  EXPECT_EQ(Run({"check"}, ""), 0);
  EXPECT_EQ(Run(Change("third"), ""), 0);
}

TEST_F(PasswordTest, ExchangedImagesAreDamagedAndPlainOnesAreEncryptedLater) {
  MakePictures();
  ASSERT_EQ(Run({"import", Pictures()}, "pw"), 0);
  const auto images = Thumbnails("pw");
  EXPECT_FALSE(Shows(images[0]));
  const std::string first = Stored(Key(0, "pw")), second = Stored(Key(1, "pw"));
  std::string flipped = second;
  flipped[flipped.size() / 2] ^= 1;
  for (const std::string& forged : {first, flipped, images[1], second.substr(0, 30)}) {
    Put(Key(1, "pw"), forged);
    EXPECT_EQ(Thumbnails("pw"), (std::vector<std::string>{images[0], "", images[2]}));
    EXPECT_EQ(Run({"check"}, "pw"), 7);
    EXPECT_EQ(Vdsto({"store", "repair"}, "pw").Json()["forged"], 1);
    EXPECT_EQ(Counts(Vdsto({"import", Pictures()}, "pw").Json()), "0 1 2");
    EXPECT_EQ(Thumbnails("pw"), images);
    EXPECT_EQ(Run({"check"}, "pw"), 0);
  }
  // A library of before: one plain image and no key, so the other two can never be read again.
  Put(Key(0, "pw"), images[0]);
  {
    CDaoDatabase database;
    database.Open(Catalogue().c_str(), false, false, ";PWD=pw");
    database.Execute("DROP TABLE VdstoImageKey");
  }
  EXPECT_EQ(Thumbnails("pw"), (std::vector<std::string>{images[0], "", ""}));
  EXPECT_EQ(Counts(Vdsto({"import", Pictures()}, "pw").Json()), "0 2 1");
  EXPECT_EQ(Thumbnails("pw"), images);
  EXPECT_FALSE(Shows(images[0]));
}

TEST_F(PasswordTest, KilledAtAnyTimeOneOfTheTwoOpensEverything) {
  constexpr int kPhotos = 12, kRuns = 20;
  MakePictures(kPhotos);
  Import();
  const auto images = Thumbnails("", kPhotos);
  std::mt19937 random(20261122);
  const auto from = std::chrono::steady_clock::now();
  std::string now = "first";
  ASSERT_EQ(Run(Change(now), ""), 0);
  const std::chrono::duration<double> whole = std::chrono::steady_clock::now() - from;
  int changed = 0;
  for (int run = 0; run < kRuns; ++run) {
    SCOPED_TRACE(run);
    const std::string next = run % 3 == 2 ? "" : "pw" + std::to_string(run);
    if (next == now) continue;
    std::vector<std::string> words = Change(next);
    words.insert(words.begin(), {"--library", Library()});
    {
      Program program(words, now);
      std::this_thread::sleep_for(whole * 1.2 * std::generate_canonical<double, 32>(random));
      program.Signal(SIGKILL);
    }
    const bool is_old = Run({"stat"}, now) == 0;
    ASSERT_NE(is_old, Run({"stat"}, next) == 0);
    if (!is_old) now = next, ++changed;
    if (run % 6 == 0) {
      ASSERT_EQ(Thumbnails(now, kPhotos), images);
    }
    const auto again = Vdsto({"import", Pictures()}, now);
    ASSERT_EQ(again.code, 0) << again.err;
    ASSERT_EQ(Counts(again.Json()), "0 0 12") << "facts and images are all there";
    ASSERT_EQ(Run({"check"}, now), 0);
    ASSERT_EQ(Shows(images[0]), now.empty());
  }
  EXPECT_GT(changed, 0);
  EXPECT_LT(changed, kRuns - 2);
}

}  // namespace
}  // namespace vdsto_test
