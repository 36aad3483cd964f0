#include <gmock/gmock.h>

#include "import_fixture.h"
#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/selection/folder_selection.h"
#include "tools/vdsto/selection/name_pattern.h"

namespace {

using namespace vdsto_test;
using namespace std::string_view_literals;
using testing::HasSubstr;
using testing::StartsWith;

class CommandTest : public ImportTest {
 protected:
  using Words = std::vector<std::string>;

  /// A run for people.
  Outcome Run(Words words, std::string_view input = "") const {
    words.insert(words.begin(), {"--library", Library()});
    return RunVdsto(words, "", input);
  }

  void ImportFamily() {
    for (const char* name :
         {"가족/a.jpg", "가족/b.png", "가족/2024/a.jpg", "가족/2025/[c].jpg", "x.jpg"})
      WritePicture(Pictures(name));
    Import();
  }
};

TEST_F(CommandTest, HelpVersionAndUnknownWords) {
  const struct {
    Words words;
    int code;
    const char* text;
  } cases[] = {
      {{"--version"}, 0, "vdsto " VDSTO_VERSION "\n"},
      {{"--help"}, 0, "Exit codes:"},
      {{"rate", "--help"}, 0, "Usage: vdsto rate [OPTIONS] RATING PHOTO..."},
      {{"nosuch", "--help"}, 2, "unknown command 'nosuch' (see vdsto --help)"},
      {{"store", "nosuch", "--help"}, 2, "unknown command 'nosuch' (see vdsto store --help)"},
      {{"--nosuch", "--version"}, 2, "unknown option '--nosuch' (see vdsto --help)"},
      {{"tree", "--nosuch"}, 2, "unknown option '--nosuch' (see vdsto tree --help)"},
      {{"ls", "a", "[b]"}, 2, "unexpected word '[b]' (see vdsto ls --help)"},
      {{"ls", "a\x1b[2J", "-x\n"}, 2, "unknown option '-x\\x0A'"},
      {{"--library", "/a\nb", "tree"}, 3, "no catalogue in /a\\x0Ab yet"},
      {{"store"}, 2, "a command is missing (see vdsto store --help)"},
      {{"--library"}, 2, "--library: 1 required DIR missing"},
      {{"rate", "6", "a.jpg"}, 2, "RATING is a number from 0 to 5, not '6'"},
      {{"rate", "5x", "a.jpg"}, 2, "RATING is a number from 0 to 5, not '5x'"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.words));
    const Outcome outcome = RunVdsto(c.words);
    EXPECT_EQ(outcome.code, c.code);
    EXPECT_THAT(c.code == 0 ? outcome.out : outcome.err, HasSubstr(c.text));
    EXPECT_EQ(c.code == 0 ? outcome.err : outcome.out, "");
  }
}

TEST_F(CommandTest, PhotosAreNamedInManyWays) {
  ImportFamily();
  const std::string guid = Photos().at(Pictures("x.jpg"))["guid"];
  const std::string x = "pictures/x.jpg\n", a = "pictures/가족/a.jpg\n",
                    b = "pictures/가족/b.png\n", a24 = "pictures/가족/2024/a.jpg\n",
                    c25 = "pictures/가족/2025/[c].jpg\n";
  const struct {
    Words words;
    std::string photos;
    std::string_view input = "";
  } cases[] = {
      {{guid}, x},
      {{Pictures("x.jpg")}, x},
      {{"x.jpg", guid, "pictures"}, x},
      {{"pictures/가족"}, a + b},
      {{"pictures/가족", "-r"}, a + b + a24 + c25},
      {{Pictures("가족/2025/")}, c25},
      {{"pictures/가족/2025/[c].jpg"}, c25},
      {{"개인 폴더/pictures/*.jpg"}, x},
      {{"pictures/가족/?.*"}, a + b},
      {{"pictures/가족/20*/"}, a24 + c25},
      {{"**/[!b-z]*", "**/x.jpg"}, a + a24 + c25 + x},
      {{"pictures/**/2024/**"}, a24},
      {{"-"}, x + b, "pictures/x.jpg\r\n\npictures/가족/b.png"},
      {{"-", "-0"}, x + c25, "x.jpg\0pictures/가족/2025/[c].jpg\0"sv},
      {{"-"}, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.words));
    Words words{"rate", "5", "-n"};
    words.insert(words.end(), c.words.begin(), c.words.end());
    const Outcome outcome = Run(words, c.input);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(
        outcome.out,
        StartsWith(c.photos + std::to_string(std::count(c.photos.begin(), c.photos.end(), '\n'))));
  }
}

TEST_F(CommandTest, NamesOfNothingAreToldAndNothingChanges) {
  ImportFamily();
  const struct {
    Words words;
    int code;
    const char* message;
    std::string_view input = "";
  } cases[] = {
      {{"x.jpg", "nope"}, 6, "no photo nope in the catalogue: vdsto ls"},
      {{"[no]", "{}", "++", "n", "m"}, 6, "no photos [no], {}, ++ and more in the catalogue"},
      {{"a.jpg"}, 6, "2 photos are named a.jpg: pictures/가족/2024/a.jpg, pictures/가족/a.jpg"},
      {{"pictures/가*"}, 6, "no photo pictures/가*, but 1 folder: end it with /"},
      {{"pictures/나*/"}, 6, "no photo pictures/나*/ in"},
      {{"x.jpg", ""}, 2, "a name is empty"},
      {{"x.jpg", "-0"}, 2, "-0 is for a list on standard input"},
      {{"-"}, 6, "no photo **/x.jpg in", "x.jpg\n**/x.jpg\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.words));
    Words words{"rate", "5"};
    words.insert(words.end(), c.words.begin(), c.words.end());
    const Outcome outcome = Run(words, c.input);
    EXPECT_EQ(outcome.code, c.code);
    EXPECT_THAT(outcome.err, HasSubstr(c.message));
  }
  EXPECT_EQ(Photos().at(Pictures("x.jpg"))["rating"], 0);
}

TEST_F(CommandTest, RatingsAreSetAndSummedUp) {
  ImportFamily();
  EXPECT_EQ(Run({"rate", "3", "x.jpg"}).out, "1 photo rated 3\n");
  EXPECT_EQ(Run({"rate", "3", "pictures", "pictures/가족", "-n"}).out,
            "pictures/가족/a.jpg\npictures/가족/b.png\n2 photos would be rated 3, 1 already is\n");
  EXPECT_EQ(Photos().at(Pictures("가족/a.jpg"))["rating"], 0);
  EXPECT_EQ(Run({"rate", "3", "pictures", "pictures/가족"}).out,
            "2 photos rated 3, 1 already was\n");
  const auto photos = Photos();
  EXPECT_EQ(photos.at(Pictures("가족/a.jpg"))["rating"], 3);
  EXPECT_EQ(photos.at(Pictures("가족/2024/a.jpg"))["rating"], 0);
  const json answer = Vdsto({"rate", "0", "x.jpg", "pictures/가족/2024/a.jpg"}).Json();
  EXPECT_EQ(answer, (json{{"changed", 1},
                          {"unchanged", 1},
                          {"dry_run", false},
                          {"photos", {photos.at(Pictures("x.jpg"))["guid"]}}}));
  EXPECT_EQ(Counts(Import()), "0 0 5");
  EditPhoto(Pictures("가족/a.jpg"), [](PHOTOINFO& photo) {
    EXPECT_EQ(photo.InfoSync, 1) << "a change is to be sent";
    photo.SetFolderID(vdstomgr::kPersonalRoot);
  });
  EXPECT_EQ(Vdsto({"info", Pictures("가족/a.jpg")}).Json()["name"], "a.jpg")
      << "a photo that was moved in the catalogue still knows its file";
}

TEST_F(CommandTest, FoldersAreNamedByPathPatternAndSource) {
  ImportFamily();
  vdsto::InitialiseCatalogueLibrary();
  vdsto::Library library({Library(), ""});
  const auto names = [&](Words words) {
    std::string result;
    for (const uint32_t id : vdsto::SelectFolders(library, {{words}}))
      result +=
          library.Call([&](auto& catalogue) { return catalogue.GetFolderName(id).Str(); }) + " ";
    return result;
  };
  EXPECT_EQ(names({"pictures/가족/*", Pictures("가족/2024"), "/"}), "2024 2025 개인 폴더 ");
  EXPECT_THROW(names({"pictures/가족/x*"}), vdsto::ToolError);
}

TEST(NamePattern, MatchesWhatShellsMatch) {
  const struct {
    const char *pattern, *yes, *no;
  } cases[] = {
      {"*a", "a", "b"},
      {"?", "한", "한글"},
      {"*.jpg", "a.b.jpg", "a.jpg.b"},
      {"a*b*c", "aXbYbc", "aXbY"},
      {"[a-c]x", "bx", "dx"},
      {"[!a-c]x", "dx", "bx"},
      {"[가-라]", "낙", "한"},
      {"[]x]", "]", "a"},
      {"[a", "[a", "a"},
      {"\\*", "*", "x"},
      {"[a-]", "-", "b"},
      {"**a", "xa", "ab"},
  };
  for (const auto& c : cases) {
    EXPECT_TRUE(vdsto::MatchesPattern(c.pattern, c.yes)) << c.pattern << " " << c.yes;
    EXPECT_FALSE(vdsto::MatchesPattern(c.pattern, c.no)) << c.pattern << " " << c.no;
  }
}

TEST(ConfirmLoss, NothingGoesWithoutAYes) {
  const auto confirm = [](bool yes) {
    try {
      vdsto::ConfirmLoss({"photo", "deleted for good", true, {"a", "b"}}, {false, yes});
      return 0;
    } catch (const vdsto::ToolError& error) {
      return static_cast<int>(error.Code());
    }
  };
  for (const auto& [typed, code] : {std::pair("y\n", 0),
                                    {"YES\n", 0},
                                    {"ㅛ\n", 0},
                                    {"네\n", 0},
                                    {"\n", 8},
                                    {"n\n", 8},
                                    {"yesterday\n", 8},
                                    {"\x04", 8}}) {
    const auto asked = RunAtTerminal([&] { return confirm(false); }, "[y/N] ", typed);
    EXPECT_EQ(asked.outcome.code, code) << typed;
    EXPECT_THAT(asked.outcome.out, HasSubstr("2 photos will be deleted for good. Go on?"));
  }
  const int input = dup(STDIN_FILENO);
  ASSERT_NE(freopen("/dev/null", "r", stdin), nullptr);
  EXPECT_EQ(confirm(false), 8);
  EXPECT_EQ(confirm(true), 0);
  dup2(input, STDIN_FILENO);
  close(input);
}

}  // namespace
