#include <gmock/gmock.h>

#include "import_fixture.h"

/// Libraries in folders that cannot be written: reading answers what it answers elsewhere and
/// leaves every byte as it was; changing is refused.
namespace {

using namespace vdsto_test;
using testing::HasSubstr;
namespace fs = std::filesystem;
using Words = std::vector<std::string>;

class ReadOnlyTest : public ImportTest {
 protected:
  ~ReadOnlyTest() override { Permit(0755); }

  void MakeLibrary(const std::string& password) const {
    WritePicture(Pictures("a.jpg"), 64, 48);
    WritePicture(Pictures("sub/b.jpg"), 64, 48, 2);
    for (const Words& words : {Words{"import", Pictures()},
                               {"tag", "add", "sea", "-r", "pictures"},
                               {"tag", "add", "sun", "pictures/a.jpg"},
                               {"find", "a"}})
      EXPECT_EQ(Vdsto(words, password).code, 0) << words[0];
  }
  /// Puts the library's files as they are while somebody uses it in its place.
  void LeaveInTheMiddle(const std::string& password, bool with_shared_memory) const {
    {
      CRkPhotoDBManager catalogue;
      ASSERT_TRUE(catalogue.OpenDB(Catalogue().c_str(), password.c_str()));
      ASSERT_TRUE(catalogue.AddTagInfo("in the log", 77));
      fs::copy(Library(), temp_ / "middle");
    }
    fs::remove_all(Library());
    fs::rename(temp_ / "middle", Library());
    if (!with_shared_memory) fs::remove(Catalogue() + "-shm");
  }
  void Permit(unsigned mode) const {
    if (!fs::exists(Library())) return;
    fs::permissions(Library(), fs::perms(mode));
    for (const auto& file : fs::directory_iterator(Library()))
      fs::permissions(file, fs::perms(mode & 0666));
  }
  std::map<std::string, std::string> Files() const {
    std::map<std::string, std::string> files;
    for (const auto& file : fs::directory_iterator(Library()))
      files[file.path().filename()] = ReadFile(file.path());
    return files;
  }
  std::vector<std::string> Answers(const std::string& password) const {
    const std::string target = temp_ / "backups";
    std::vector<std::string> answers;
    for (const Words& words : {Words{"tree"},
                               {"ls", "pictures"},
                               {"info", "pictures/a.jpg"},
                               {"find", "b"},
                               {"recent"},
                               {"biggest"},
                               {"tag", "ls"},
                               {"tagged", "sea", "sun"},
                               {"tagged", "--all", "sun", "sea"},
                               {"thumb", "pictures/a.jpg", "-o", "-"},
                               {"store", "verify"},
                               {"check"},
                               {"trash", "ls"},
                               {"sql", "SELECT * FROM PhotoMaster"},
                               {"sql", "--facts", "SELECT * FROM PhotoFacts"}}) {
      const Outcome outcome = Vdsto(words, password);
      EXPECT_EQ(outcome.code, 0) << testing::PrintToString(words) << outcome.err;
      answers.push_back(outcome.out);
    }
    for (const Words& words : {Words{"stat"},
                               {"store", "stat"},
                               {"backup", target},
                               {"gallery", "pictures", "-f", "-o", temp_ / "pages"}})
      EXPECT_EQ(Vdsto(words, password).code, 0) << words[0];
    return answers;
  }
};

TEST_F(ReadOnlyTest, ReadingAnswersTheSameAndChangesNothing) {
  enum class Log { kNone, kFilled, kShared };
  for (const std::string password : {"", "secret"}) {
    for (const Log log : {Log::kNone, Log::kFilled, Log::kShared}) {
      fs::remove_all(Library());
      MakeLibrary(password);
      if (log != Log::kNone) LeaveInTheMiddle(password, log == Log::kShared);
      const auto files = Files();
      EXPECT_EQ(files.contains("catalogue.vdb-wal"), log != Log::kNone);
      Permit(0555);
      const auto answers = Answers(password);
      EXPECT_EQ(Files(), files);
      Permit(0755);
      EXPECT_EQ(Answers(password), answers) << password << static_cast<int>(log);
      const bool has_log =
          Vdsto({"tag", "ls"}, password).out.find("in the log") != std::string::npos;
      EXPECT_EQ(has_log, log != Log::kNone);
    }
  }
}

TEST_F(ReadOnlyTest, ASearchDatabaseThatIsOfNoUseIsMadeElsewhereForTheMoment) {
  MakeLibrary("");
  const std::string search = Library() + "/search.vdb", before = temp_ / "search";
  fs::create_directory(temp_ / "tmp");
  setenv("TMPDIR", (temp_ / "tmp").c_str(), 1);
  fs::copy(search, before);
  WritePicture(Pictures("b2.jpg"), 64, 48, 3);
  Import();
  const std::string expected = Vdsto({"find", "b"}).out;
  for (const char* what : {"missing", "stale", "damaged"}) {
    fs::remove(search);
    if (what == std::string("stale")) fs::copy(before, search);
    if (what == std::string("damaged")) WriteFile(search, std::string(9000, 'x'));
    Permit(0555);
    EXPECT_EQ(Vdsto({"find", "b"}).out, expected) << what;
    Permit(0755);
  }
  EXPECT_TRUE(fs::is_empty(temp_ / "tmp"));
  unsetenv("TMPDIR");
}

TEST_F(ReadOnlyTest, ChangingIsRefusedBeforeAnythingIsAsked) {
  MakeLibrary("");
  const auto files = Files();
  Permit(0555);
  for (const Words& words : {Words{"import", Pictures()},
                             {"rate", "3", "pictures/a.jpg"},
                             {"title", "x", "pictures/a.jpg"},
                             {"tag", "remove", "sea", "pictures/a.jpg"},
                             {"trash", "empty"},
                             {"store", "compact"},
                             {"store", "repair"},
                             {"reindex"},
                             {"upload", "run", "--to", temp_ / "target"},
                             {"synclist", "clear"}}) {
    const Outcome outcome = Vdsto(words);
    EXPECT_EQ(outcome.code, 3) << testing::PrintToString(words);
    EXPECT_THAT(outcome.err, HasSubstr(Library() + " is read-only: ")) << words[0];
  }
  EXPECT_EQ(Files(), files);
}

}  // namespace
