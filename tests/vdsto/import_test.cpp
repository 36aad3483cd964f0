#include <gmock/gmock.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <random>
#include <thread>

#include "import_fixture.h"

namespace {

using namespace vdsto_test;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
namespace fs = std::filesystem;

TEST_F(ImportTest, MirrorsFoldersAndChangesNothingTheSecondTime) {
  WritePicture(Pictures("여행/a.jpg"));
  WriteExif(Pictures("여행/a.jpg"), {{"Exif.Photo.DateTimeOriginal", "2004:06:29 15:29:33"}});
  WritePicture(Pictures("b.png"), 30, 20);
  WriteFile(Pictures("broken.jpg"), "");
  WriteFile(Pictures("여행/notes.txt"), "text");
  WriteFile(Pictures(".hidden/c.txt"), "");
  WriteFile(Pictures("empty/notes.txt"), "text");
  const json first = Import();
  EXPECT_EQ(Counts(first), "3 0 0");
  EXPECT_EQ(first["not_pictures"], 2);
  EXPECT_EQ(first["hidden"], 1);
  EXPECT_EQ(first["folders_created"], 2) << "folders without pictures are not mirrored";
  EXPECT_EQ(first["broken"][0]["path"], Pictures("broken.jpg"));
  const auto before = Photos();
  EXPECT_EQ(Counts(Import()), "0 0 3");
  EXPECT_EQ(Photos(), before);

  const json& a = before.at(Pictures("여행/a.jpg"));
  EXPECT_EQ(a["folder"], "pictures/여행");
  EXPECT_EQ(a["shot"], "2004-06-29 15:29:33");
  EXPECT_EQ(a["thumbnail"], "store:" + a["guid"].get<std::string>() + ".400.jpg");
  const json& b = before.at(Pictures("b.png"));
  EXPECT_EQ(b["shot"], b["last_write"]);
  EXPECT_EQ(b["width"], 30);
  EXPECT_TRUE(before.at(Pictures("broken.jpg"))["thumbnail"].is_null());
}

TEST_F(ImportTest, AChangedFileKeepsItsGuid) {
  WritePicture(Pictures("a.jpg"));
  WriteFile(Pictures("b.jpg"), "not yet");
  Import();
  const auto before = Photos();
  WritePicture(Pictures("a.jpg"), 100, 50, 2);
  WritePicture(Pictures("b.jpg"), 70, 60);
  EXPECT_EQ(Counts(Import()), "0 2 0");
  const auto after = Photos();
  for (const char* name : {"a.jpg", "b.jpg"}) {
    EXPECT_EQ(after.at(Pictures(name))["guid"], before.at(Pictures(name))["guid"]);
    EXPECT_NE(after.at(Pictures(name))["md5"], before.at(Pictures(name))["md5"]);
  }
  EXPECT_EQ(after.at(Pictures("a.jpg"))["width"], 100);
  EXPECT_EQ(after.at(Pictures("b.jpg"))["width"], 70);
  EXPECT_EQ(Counts(Import()), "0 0 2");
}

TEST_F(ImportTest, NamesThatDifferInCaseOrCompositionStayApart) {
  const std::string decomposed = "\u1112\u1174\u11AB";
  for (const std::string name : {"Dir/A.jpg", "Dir/a.JPG", "dir/A.jpg", "흰/흰.jpg"})
    WritePicture(Pictures(name));
  WritePicture(Pictures(decomposed + "/흰.jpg"));
  WritePicture(Pictures(decomposed + "/" + decomposed + ".jpg"));
  WritePicture(Pictures("odd.jpg"));
  fs::rename(Pictures("odd.jpg"), Pictures("odd \xFF.jpg"));
  EXPECT_EQ(Counts(Import()), "7 0 0");
  const auto before = Photos();
  EXPECT_EQ(before.at(Pictures(decomposed + "/" + decomposed + ".jpg"))["name"], "흰.jpg");
  EXPECT_NE(before.at(Pictures("dir/A.jpg"))["folder"], before.at(Pictures("Dir/A.jpg"))["folder"]);
  EXPECT_NE(before.at(Pictures("흰/흰.jpg"))["folder"],
            before.at(Pictures(decomposed + "/흰.jpg"))["folder"]);
  EXPECT_EQ(Counts(Import()), "0 0 7");
  EXPECT_EQ(Photos(), before);
  const Outcome info = Vdsto({"info", Pictures(decomposed + "/" + decomposed + ".jpg")});
  EXPECT_EQ(info.Json()["guid"],
            before.at(Pictures(decomposed + "/" + decomposed + ".jpg"))["guid"]);
}

TEST_F(ImportTest, SubFoldersAndParentsOfAnImportAreFoundAgain) {
  for (const char* name : {"x/a.jpg", "x/y/b.jpg", "x/y/z/c.jpg"}) WritePicture(Pictures(name));
  EXPECT_EQ(Counts(Import({Pictures("x/y")})), "2 0 0");
  EXPECT_EQ(Counts(Import({Pictures("x/y/z")})), "0 0 1");
  WritePicture(Pictures("x/y/new/d.jpg"));
  EXPECT_EQ(Counts(Import({Pictures("x/y/new")})), "1 0 0");
  EXPECT_EQ(Counts(Import()), "1 0 3");
  EXPECT_EQ(Counts(Import({Pictures("x"), Pictures()})), "0 0 4");
  EXPECT_EQ(Photos().at(Pictures("x/y/new/d.jpg"))["folder"], "y/new");
  WritePicture(temp_ / "other/pictures/e.jpg");
  EXPECT_EQ(Counts(Import({temp_ / "other/pictures"})), "1 0 0");
  EXPECT_EQ(Photos().at(temp_ / "other/pictures/e.jpg")["folder"], "pictures (0)");
}

TEST_F(ImportTest, RenamedFoldersAreFoundAgain) {
  for (const char* name : {"a/1.jpg", "b/c/2.jpg", "d/3.jpg"}) WritePicture(Pictures(name));
  Import();
  {
    CRkPhotoDBManager catalogue;
    ASSERT_TRUE(catalogue.OpenDB(Catalogue().c_str(), ""));
    const auto rename = [&](const char* path, const char* name) {
      const DWORD folder = catalogue.GetFolderIDFromPath(path);
      ASSERT_NE(folder, 0xFFFFFFFF) << path;
      EXPECT_TRUE(catalogue.RenameFolder(folder, name, ""));
    };
    rename("개인 폴더/pictures/a", "첫째");
    rename("개인 폴더/pictures/b", "d (1)");
    rename("개인 폴더/pictures", "내 사진");
  }
  WritePicture(Pictures("a/4.jpg"));
  EXPECT_EQ(Counts(Import()), "1 0 3");
  EXPECT_EQ(Photos().at(Pictures("a/4.jpg"))["folder"], "내 사진/첫째");
}

/// A folder of the user's own that happens to have the name is not taken for the mirror.
TEST_F(ImportTest, ForeignFoldersAndRowsStay) {
  WritePicture(temp_ / "one/trip/1.jpg");
  WritePicture(temp_ / "two/trip/2.jpg");
  Import({temp_ / "one/trip"});
  EXPECT_EQ(Import({temp_ / "two/trip"})["folders_created"], 1);
  fs::remove(temp_ / "one/trip/1.jpg");
  EXPECT_EQ(Counts(Import({temp_ / "one/trip", temp_ / "two/trip", temp_ / "two/trip"})), "0 0 1");
  EXPECT_EQ(Photos().at(temp_ / "one/trip/1.jpg")["folder"], "trip")
      << "an original that is away is no reason to forget";
  EXPECT_EQ(Photos().at(temp_ / "two/trip/2.jpg")["folder"], "trip (0)");
}

TEST_F(ImportTest, LinksAndLongPaths) {
  WritePicture(Pictures("a/p.jpg"));
  WritePicture(temp_ / "outside/q.jpg");
  fs::create_symlink(Pictures(), Pictures("a/up"));
  fs::create_symlink(Pictures("a"), Pictures("again"));
  fs::create_symlink(temp_ / "outside", Pictures("out"));
  fs::create_symlink("nowhere", Pictures("dangling.jpg"));
  const std::string long_name = std::string(120, 'n') + "/" + std::string(120, 'm') + "/long.jpg";
  WritePicture(Pictures(long_name));
  const Outcome import = Vdsto({"import", Pictures()});
  const json summary = import.Json();
  EXPECT_EQ(import.code, 11) << "a link leads nowhere";
  EXPECT_EQ(Counts(summary), "3 0 0");
  EXPECT_EQ(summary["long_paths"][0]["path"], Pictures(long_name));
  EXPECT_EQ(summary["unreadable"][0]["path"], Pictures("dangling.jpg"));
  const json again = Vdsto({"import", Pictures()}).Json();
  EXPECT_EQ(Counts(again), "0 0 3");
  EXPECT_EQ(again["long_paths"].size(), 0u) << "not looked into again";
  Import({temp_ / "outside"});
  const auto problems = [&] { return Vdsto({"problems"}).Json(); };
  EXPECT_EQ(problems()[0]["original"], Pictures("dangling.jpg"));
  EXPECT_EQ(problems()[0]["state"], "unreadable");
  fs::remove(Pictures("dangling.jpg"));
  Import();
  EXPECT_EQ(problems(), json::array());
}

TEST_F(ImportTest, ManyPicturesFillSeveralBatches) {
  WritePicture(Pictures("0.png"), 4, 4);
  for (int i = 1; i < 600; ++i) {
    fs::create_hard_link(Pictures("0.png"),
                         Pictures(std::to_string(i % 7) + "/" + std::to_string(i) + ".png"));
  }
  EXPECT_EQ(Counts(Import()), "600 0 0");
  const json statistics = Vdsto({"stat"}).Json();
  EXPECT_EQ(statistics["photos"], 600);
  EXPECT_EQ(statistics["folders"], 8);
  EXPECT_EQ(statistics["by_type"]["png"]["photos"], 600);
}

TEST_F(ImportTest, TwoImportsAtOnceBothFinish) {
  for (int i = 0; i < 30; ++i)
    WritePicture(Pictures(std::to_string(i % 3) + "/" + std::to_string(i) + ".jpg"), 300, 200, i);
  for (int i = 0; i < 10; ++i)
    WritePicture(temp_ / ("more/" + std::to_string(i) + ".jpg"), 300, 200, i);
  Program first({"--library", Library(), "import", Pictures()});
  Program second({"--library", Library(), "import", temp_ / "more", Pictures()});
  EXPECT_EQ(first.Wait().code, 0);
  EXPECT_EQ(second.Wait().code, 0);
  EXPECT_EQ(Photos().size(), 40u);
  EXPECT_EQ(Counts(Import({Pictures(), temp_ / "more"})), "0 0 40");
}

TEST_F(ImportTest, InterruptedImportKeepsWhatItHas) {
  for (int i = 0; i < 60; ++i) WritePicture(Pictures(std::to_string(i) + ".png"), 900, 700, i);
  Program import({"--library", Library(), "--json", "import", Pictures()});
  while (!fs::exists(Catalogue())) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  import.Signal(SIGINT);
  const Outcome outcome = import.Wait();
  ASSERT_EQ(outcome.code, 130) << outcome.err;
  EXPECT_TRUE(outcome.Json()["interrupted"]);
  const size_t kept = Photos().size();
  EXPECT_EQ(outcome.Json()["added"], kept);
  EXPECT_LT(kept, 60u);
  EXPECT_EQ(Counts(Import()), std::to_string(60 - kept) + " 0 " + std::to_string(kept));
}

/// The photos whose row names an image that the store does not have.
size_t CountMissingImages(const std::map<std::string, json>& photos, const std::string& store) {
  CRkPhotoImageStorage images;
  if (fs::exists(store)) {
    EXPECT_TRUE(images.OpenFile(store.c_str()));
  }
  return static_cast<size_t>(std::count_if(photos.begin(), photos.end(), [&](const auto& photo) {
    const auto location = photo.second["thumbnail"].template get<std::string>();
    return !images.IsImage(location.substr(location.find(':') + 1).c_str());
  }));
}

/// The catalogue answers after every kill and names no image that is not there, and the last import
/// completes it: each picture once.
TEST_F(ImportTest, KillsAtRandomInstantsLoseNothing) {
  for (int i = 0; i < 40; ++i) {
    WritePicture(Pictures(std::to_string(i % 5) + "/" + std::to_string(i) + ".jpg"), 400, 300, i);
  }
  std::mt19937 random(std::random_device{}());
  std::uniform_int_distribution<int> milliseconds(0, 250);
  std::map<std::string, json> before;
  for (int round = 0; round < 20; ++round) {
    if (round % 5 == 4) fs::remove_all(Library()), before.clear();
    Program import({"--library", Library(), "import", Pictures()});
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds(random)));
    import.Signal(SIGKILL);
    import.Wait();
    if (!fs::exists(Catalogue())) continue;
    ASSERT_EQ(std::system((VDSTO_CHECK_INTEGRITY " '" + Catalogue() + "'").c_str()), 0);
    const Outcome check = Vdsto({"stat"});
    ASSERT_EQ(check.code, 0) << check.err;
    const auto now = Photos();
    ASSERT_EQ(CountMissingImages(now, Store()), 0u);
    for (const auto& [original, photo] : before) {
      ASSERT_TRUE(now.contains(original));
      ASSERT_EQ(now.at(original)["guid"], photo["guid"]);
    }
    before = now;
  }
  Import();
  EXPECT_EQ(Photos().size(), 40u);
  EXPECT_EQ(Counts(Import()), "0 0 40");
  EXPECT_EQ(Vdsto({"stat"}).Json()["folders"], 6);
  EXPECT_EQ(Vdsto({"store", "compact"}).Json()["images"], 40);
  EXPECT_EQ(Vdsto({"store", "verify"}).code, 0);
  EXPECT_EQ(CountMissingImages(Photos(), Store()), 0u);
}

TEST_F(ImportTest, PasswordComesFromFileOrEnvironment) {
  WritePicture(Pictures("a.jpg"));
  WriteFile(temp_ / "secret", "열려라 참깨\nsecond line");
  EXPECT_EQ(Vdsto({"import", Pictures()}, "열려라 참깨").code, 0);
  EXPECT_EQ(ReadFile(Catalogue()).find("SQLite format"), std::string::npos);
  EXPECT_EQ(Vdsto({"stat", "--password-file", temp_ / "secret"}).Json()["photos"], 1);
  for (const char* wrong : {"", "open sesame"}) {
    const Outcome outcome = Vdsto({"stat"}, wrong);
    EXPECT_EQ(outcome.code, 4) << outcome.err;
    EXPECT_THAT(outcome.err, testing::StartsWith("vdsto: "));
  }
}

TEST_F(ImportTest, RootsThatCannotBeReadAreToldAndTheOthersImported) {
  WritePicture(Pictures("good/a.jpg"));
  WritePicture(Pictures("locked/a.jpg"));
  WritePicture(Pictures("listed/a.jpg"));
  WriteFile(temp_ / "file", "");
  fs::permissions(Pictures("locked"), fs::perms::none);
  fs::permissions(Pictures("listed"), fs::perms::owner_read);
  const std::string nowhere = Pictures("nowhere");
  for (const auto& [root, reason] : {std::pair(nowhere, "No such file or directory"),
                                     {Pictures("locked"), "Permission denied"},
                                     {Pictures("listed"), "Permission denied"},
                                     {temp_ / "file", "Not a directory"}}) {
    const Outcome outcome = Vdsto({"import", root, nowhere});
    EXPECT_EQ(outcome.code, 6);
    EXPECT_THAT(outcome.err, HasSubstr(root + ": " + reason + "; " + nowhere + ": "));
    EXPECT_FALSE(fs::exists(Library())) << "a wrong word makes no library";
  }
  const Outcome outcome =
      Vdsto({"import", Pictures("locked"), Pictures("good"), nowhere, Pictures("listed")});
  EXPECT_EQ(outcome.code, 9);
  EXPECT_EQ(outcome.err, "vdsto: 3 of 4 folders could not be imported\n");
  EXPECT_EQ(outcome.Json()["added"], 1);
  EXPECT_EQ(outcome.Json()["unreadable"].size(), 3u);
  EXPECT_EQ(outcome.Json()["unreadable"][1]["path"], nowhere);
  fs::permissions(Pictures("locked"), fs::perms::owner_all);
  EXPECT_EQ(Counts(Import({Pictures("locked"), Pictures("good")})), "1 0 1");
}

TEST_F(ImportTest, APasswordIsTypedUnseenAndTheTerminalStaysAsItWas) {
  WritePicture(Pictures("a.jpg"));
  const auto at_prompt = [&](const std::string& typed) {
    const auto import = [&] {
      return execl(VDSTO_PROGRAM, "vdsto", "--library", Library().c_str(), "--password", "import",
                   Pictures().c_str(), nullptr);
    };
    return RunAtTerminal(import, "New password: ", typed);
  };
  for (const auto& [typed, code] :
       {std::pair("se\x03", 130), {"\x1c", 131}, {"\n", 2}, {"\x04", 2}, {"a\nb\n", 2}}) {
    const auto stopped = at_prompt(typed);
    EXPECT_EQ(stopped.outcome.code, code);
    EXPECT_TRUE(stopped.echoes);
    EXPECT_FALSE(fs::exists(Library()));
  }
  const auto done = at_prompt("secret\nsecret\n");
  EXPECT_EQ(done.outcome.code, 0);
  EXPECT_TRUE(done.echoes);
  EXPECT_THAT(done.outcome.out, testing::Not(HasSubstr("secret")));
  EXPECT_EQ(Vdsto({"stat"}, "secret").code, 0);
  EXPECT_EQ(Vdsto({"stat"}).code, 4);
}

TEST_F(ImportTest, EveryFailureIsOneLine) {
  WritePicture(Pictures("a.jpg"));
  Import();
  const std::string good = ReadFile(Catalogue());
  WriteFile(temp_ / "file", "");
  const struct {
    std::string catalogue;  ///< its contents; "-" for none
    std::vector<std::string> arguments;
    int code;
    const char* message = "";
  } cases[] = {
      {"-", {"stat"}, 3},
      {"This is a text file, and no catalogue at all.\n", {"stat"}, 3},
      {"This is a text file, and no catalogue at all.\n", {"import", Pictures()}, 3},
      {good.substr(0, good.size() / 2), {"tree"}, 3},
      {good.substr(0, 700), {"ls"}, 3},
      {good, {"ls", "no such folder"}, 6},
      {good, {"info", "00000000-0000-4000-8000-000000000000"}, 6},
      {good, {"import", Pictures("nowhere")}, 6},
      {good, {"import", Pictures("a.jpg")}, 6},
      {good, {"stat", "--password-file", temp_ / "none"}, 2},
      {good, {"stat", "--password"}, 2},
      {good, {"fly"}, 2, "unknown command 'fly' "},
      {good, {"store", "fly"}, 2, "unknown command 'fly' "},
      {good, {"store"}, 2},
      {good, {"--fly"}, 2, "unknown option '--fly' "},
      {good, {"thumb", Pictures("a.jpg")}, 2},
      {good, {"store", "compact"}, 3},
      {"-", {"store", "repair"}, 3},
      {good, {}, 2},
      {good, {"info"}, 2},
      {"-", {"--library", temp_ / "file", "import", Pictures()}, 3},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments) + " on " + c.catalogue.substr(0, 16));
    fs::remove_all(Library());
    if (c.catalogue != "-") WriteFile(Catalogue(), c.catalogue);
    std::vector<std::string> arguments{"--library", Library()};
    if (!c.arguments.empty() && c.arguments[0] == "--library") arguments.clear();
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    const Outcome outcome = RunVdsto(arguments);
    EXPECT_EQ(outcome.code, c.code) << outcome.err;
    EXPECT_THAT(outcome.err, testing::MatchesRegex("vdsto: [^\n]+\n"));
    EXPECT_THAT(outcome.err, HasSubstr(c.message));
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(c.code != 3 || c.catalogue == "-" || ReadFile(Catalogue()) == c.catalogue)
        << "the file was changed";
  }
}

TEST_F(ImportTest, HumanOutputIsAlignedAndSafe) {
  WritePicture(Pictures("사진.jpg"), 30, 20);
  WriteFile(Pictures("a\x1b[2J.jpg"), "");
  Import();
  const auto human = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--library", Library()});
    return RunVdsto(arguments).out;
  };
  EXPECT_THAT(human({"tree"}), HasSubstr("개인 폴더\n└── pictures  (2)\n2 photos\n"));
  const std::string listing = human({"ls", "pictures"});
  EXPECT_THAT(listing, HasSubstr("      -  a\\x1B[2J.jpg\n"));
  EXPECT_THAT(listing, HasSubstr("30 x 20  사진.jpg\n"));
  EXPECT_THAT(human({"info", "pictures/사진.jpg"}), HasSubstr("width                 30\n"));
  EXPECT_THAT(human({"stat"}), HasSubstr("photos      2, "));
  for (const char* command : {"import", "tree", "ls", "info", "thumb", "stat", "store"}) {
    EXPECT_THAT(human({command, "--help"}), HasSubstr("Usage: ")) << command;
  }
  for (const char* command : {"stat", "verify", "repair", "compact", "sync"}) {
    EXPECT_THAT(human({"store", command, "--help"}), HasSubstr("Usage: ")) << command;
  }
  EXPECT_THAT(human({"--help"}), HasSubstr("Exit codes:"));
}

}  // namespace
