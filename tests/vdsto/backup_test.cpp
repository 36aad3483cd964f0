#include <gmock/gmock.h>

#include <chrono>
#include <random>
#include <thread>

#include "import_fixture.h"

/// Backups are made, disturbed and restored; what is restored is compared with what was there.
namespace {

using namespace vdsto_test;
using testing::HasSubstr;
using testing::MatchesRegex;
namespace fs = std::filesystem;

class BackupTest : public ImportTest {
 protected:
  void SetUp() override {
    for (int i = 0; i < 4; ++i)
      WritePicture(Pictures("a" + std::to_string(i) + ".jpg"), 500, 400, i + 1);
    ASSERT_EQ(Counts(Import()), "4 0 0");
  }

  std::string Dir() const { return temp_ / "disk/backups"; }
  std::vector<std::string> Words(const std::vector<std::string>& more = {}) const {
    std::vector<std::string> words{"--library", Library(), "--json", "backup", Dir()};
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }
  json Backup(const std::vector<std::string>& more = {}) const {
    const Outcome outcome = RunVdsto(Words(more));
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return outcome.code == 0 ? outcome.Json() : json();
  }
  json List() const { return RunVdsto(Words({"--list"})).Json(); }
  static std::string Dump(const std::string& library) {
    return RunVdsto({"--library", library, "--json", "ls", "pictures"}).out;
  }
  static void RateAll(CRkPhotoDBManager& catalogue, int rating) {
    vdstomgr::PhotoArray photos;
    catalogue.GetPhotoInFolder(catalogue.GetFolderIDFromPath("개인 폴더/pictures"), photos);
    for (PHOTOINFO& photo : photos) {
      photo.SetRating(static_cast<BYTE>(rating));
      EXPECT_TRUE(catalogue.SetPhotoInfo(photo, false));
    }
  }
  /// The same without the program, which takes longer to start.
  static std::string State(const std::string& library, int new_rating = 0) {
    CRkPhotoDBManager catalogue;
    vdstomgr::PhotoArray photos;
    std::string text;
    EXPECT_TRUE(catalogue.OpenDB((library + "/catalogue.vdb").c_str(), ""));
    if (new_rating > 0) RateAll(catalogue, new_rating);
    catalogue.GetPhotoInFolder(catalogue.GetFolderIDFromPath("개인 폴더/pictures"), photos);
    for (const PHOTOINFO& photo : photos) {
      text += std::string(photo.szGUID) + photo.GetFileName() + photo.GetLTBURL() +
              std::to_string(photo.byteRating) + "\n";
    }
    return text;
  }
  std::string Newest() const {
    std::string newest;
    for (const auto& entry : fs::directory_iterator(Dir() + "/generations"))
      newest = std::max(newest, entry.path().stem().string());
    return newest;
  }
  /// The dump of what the newest backup, or one, restores to, which must be in order.
  std::string Restored(const std::string& id = "") const {
    Restore(id);
    for (const char* name : {"catalogue.vdb", "search.vdb"}) {
      const std::string file = temp_ / ("restored/" + std::string(name));
      if (fs::exists(file)) {
        EXPECT_EQ(std::system((VDSTO_CHECK_INTEGRITY " '" + file + "'").c_str()), 0);
      }
    }
    return Dump(temp_ / "restored");
  }
  std::string StateOfRestored() const {
    Restore("");
    const std::string check = VDSTO_CHECK_INTEGRITY " '" + temp_ / "restored/catalogue.vdb" + "'";
    EXPECT_EQ(std::system(check.c_str()), 0);
    return State(temp_ / "restored");
  }
  void Restore(const std::string& id) const {
    const std::string target = temp_ / "restored";
    fs::remove_all(target);
    const Outcome outcome = RunVdsto({"--library", target, "restore", Dir(), "--generation", id});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    const auto report = vdstomgr::VerifyStorage((target + "/images.pdb").c_str());
    EXPECT_TRUE(report.is_sound && report.live_records >= 4) << report.finding_count;
  }
  void ExpectRefused(std::vector<std::string> words, int code, const std::string& message) const {
    SCOPED_TRACE(testing::PrintToString(words));
    const Outcome outcome = RunVdsto(std::move(words));
    EXPECT_EQ(outcome.code, code) << outcome.out;
    EXPECT_THAT(outcome.err, MatchesRegex("vdsto: [^\n]+\n"));
    EXPECT_THAT(outcome.err, HasSubstr(message));
  }
  std::vector<fs::path> Pieces() const {
    std::vector<fs::path> pieces;
    for (const auto& entry : fs::recursive_directory_iterator(Dir() + "/pieces"))
      if (entry.is_regular_file()) pieces.push_back(entry.path());
    return pieces;
  }
  void Flip(const fs::path& file) const {
    std::string bytes = ReadFile(file.string());
    bytes[bytes.size() / 2] ^= 1;
    WriteFile(file.string(), bytes);
  }
};

TEST_F(BackupTest, GenerationsShareWhatHasNotChangedAndAreEachWhole) {
  const auto first = Backup();
  const std::string before = Dump(Library());
  WritePicture(Pictures("b.jpg"), 500, 400, 9);
  Import();
  const auto second = Backup();
  EXPECT_EQ(first["new_bytes"], first["bytes"]);
  EXPECT_LT(second["new_bytes"], second["bytes"]);
  EXPECT_LE(Backup()["new_bytes"], 2 * 256 * 1024) << "opening a library changes a page of it";
  EXPECT_EQ(List().size(), 3u);
  EXPECT_EQ(Restored(), Dump(Library()));
  EXPECT_EQ(Restored(first["backup"]), before);
  EXPECT_NE(before, Dump(Library()));
  EXPECT_EQ(RunVdsto({"--library", temp_ / "restored", "thumb", "a1.jpg", "-o", "-"}).out,
            RunVdsto({"--library", Library(), "thumb", "a1.jpg", "-o", "-"}).out);
  WriteFile(Dir() + "/generations/mine.txt", "mine");
  WriteFile(Dir() + "/pieces/mine.txt", "mine");
  EXPECT_EQ(Backup({"--keep", "2"})["deleted"], 2);
  EXPECT_EQ(RunVdsto(Words({"--verify"})).Json()["sound"].size(), 2u);
  EXPECT_EQ(RunVdsto(Words({"--prune", "--keep", "1"})).Json()["deleted"], 1);
  EXPECT_EQ(ReadFile(Dir() + "/generations/mine.txt") + ReadFile(Dir() + "/pieces/mine.txt"),
            "minemine");
  EXPECT_EQ(Restored(), Dump(Library()));
}

TEST_F(BackupTest, DamageIsNamedAndTheNextBackupMendsIt) {
  Backup();
  const auto pieces = Pieces();
  Flip(pieces.front());
  if (pieces.size() > 1) fs::remove(pieces.back());
  ExpectRefused({"--library", temp_ / "new", "restore", Dir()}, 7, "is damaged in the backup");
  EXPECT_FALSE(fs::exists(temp_ / "new"));
  const Outcome verdict = RunVdsto(Words({"--verify"}));
  EXPECT_EQ(verdict.code, 7);
  EXPECT_GE(verdict.Json()["damaged"].size(), 1u) << verdict.out;
  const std::string older = List()[0]["backup"];
  EXPECT_EQ(List()[0]["verdict"], "pieces missing");
  Backup({"--keep", "1"});
  EXPECT_EQ(RunVdsto(Words({"--verify"})).code, 0);
  EXPECT_EQ(Restored(), Dump(Library()));
  for (const fs::path& piece : Pieces()) fs::resize_file(piece, 1);
  EXPECT_EQ(RunVdsto(Words({"--prune", "--keep", "1"})).Json()["deleted"], 0)
      << "nothing goes while none is whole";
  Flip(Dir() + "/generations/" + List()[0]["backup"].get<std::string>() + ".json");
  EXPECT_EQ(RunVdsto(Words({"--verify"})).code, 7);
}

TEST_F(BackupTest, WrongFoldersAreRefusedAndNothingIsReplacedUnasked) {
  WriteFile(temp_ / "file", "mine");
  WriteFile(temp_ / "full/mine", "mine");
  fs::create_directory_symlink(Library(), temp_ / "link");
  WriteFile(temp_ / "locked/x", "mine");
  fs::permissions(temp_ / "locked", fs::perms::owner_read | fs::perms::owner_exec);
  const std::string with = Library();
  const struct {
    std::string dir;
    int code;
    const char* message;
  } cases[] = {{temp_ / "file", 2, "is no folder"},
               {"", 2, "is no folder"},
               {Library(), 2, "lies in the library's folder"},
               {Library() + "/backups", 2, "lies in the library's folder"},
               {temp_ / "link/backups", 2, "lies in the library's folder"},
               {temp_ / "", 2, "has the library inside"},
               {temp_ / "full", 8, "is not empty and no folder of backups"},
               {temp_ / "locked/new", 10, "Permission denied"}};
  for (const auto& c : cases)
    ExpectRefused({"--library", with, "backup", c.dir}, c.code, c.message);
  ExpectRefused({"--library", with, "backup", "/nowhere/sub/backups"}, 10, "mounted?");
  ExpectRefused({"--library", temp_ / "none", "backup", Dir()}, 3, "no catalogue in");
  ExpectRefused(Words({"--prune"}), 2, "--keep N");
  Backup();
  fs::copy(Library(), temp_ / "other");
  ExpectRefused({"--library", temp_ / "other", "backup", Dir()}, 8, "has the backups of");
  EXPECT_EQ(RunVdsto({"--library", temp_ / "other", "backup", Dir(), "--moved"}).code, 0);
  ExpectRefused({"--library", with, "restore", Dir()}, 8, "--force puts it aside");
  ExpectRefused({"--library", temp_ / "full", "restore", "-f", Dir()}, 8, "no library");
  ExpectRefused({"--library", with, "restore", temp_ / "full"}, 6, "no folder of backups");
  ExpectRefused({"--library", with, "restore", Dir(), "--generation", "1999"}, 6, "no backup 1999");
  const std::string before = Dump(Library());
  Vdsto({"rate", "5", "a1.jpg"});
  {
    CRkPhotoDBManager host;
    ASSERT_TRUE(host.OpenDB(Catalogue().c_str(), ""));
    ExpectRefused({"--library", with, "restore", "--force", Dir()}, 8, "somebody uses the library");
  }
  const std::string after = Dump(Library());
  const Outcome forced = Vdsto({"restore", "--force", Dir()});
  ASSERT_EQ(forced.code, 0) << forced.err;
  EXPECT_EQ(Dump(Library()), before);
  EXPECT_EQ(Dump(forced.Json()["kept"]), after);
}

TEST_F(BackupTest, APasswordStaysWithEveryCopy) {
  const std::string library = temp_ / "secret";
  const auto vdsto = [&](std::vector<std::string> words, const std::string& password) {
    words.insert(words.begin(), {"--library", library});
    return RunVdsto(std::move(words), password);
  };
  ASSERT_EQ(vdsto({"import", Pictures()}, "비밀").code, 0);
  EXPECT_EQ(vdsto({"backup", Dir()}, "wrong").code, 4);
  EXPECT_EQ(vdsto({"backup", Dir()}, "").code, 4);
  EXPECT_EQ(vdsto({"backup", Dir()}, "비밀").code, 0);
  for (const fs::path& piece : Pieces())
    EXPECT_EQ(ReadFile(piece.string()).find("SQLite format"), std::string::npos);
  const std::string before = vdsto({"--json", "ls", "pictures"}, "비밀").out;
  EXPECT_EQ(vdsto({"restore", "-f", Dir()}, "").code, 0);
  EXPECT_EQ(vdsto({"--json", "ls", "pictures"}, "비밀").out, before);
}

/// A third each: killed at any time, a disk that is full at any point, somebody who writes.
TEST_F(BackupTest, AHundredDisturbancesLeaveTheNewestBackupWhole) {
  std::mt19937 random(20261121);
  const auto from = std::chrono::steady_clock::now();
  std::map<std::string, std::vector<std::string>> states;  // of each backup: at its begin and end
  states[Backup()["backup"]] = {State(Library())};
  const auto whole = std::chrono::steady_clock::now() - from;
  int made[3] = {};
  for (int run = 0; run < 100; ++run) {
    SCOPED_TRACE(run);
    std::vector<std::string> allowed{State(Library(), 1 + run % 5)};
    if (run % 3 == 0) {
      Program backup(Words({"--keep", "3"}));
      std::this_thread::sleep_for(whole * (random() % 1000) / 1000);
      backup.Signal(SIGKILL);
      backup.Wait();
    } else if (run % 3 == 1) {
      const std::string line = "trap '' XFSZ; ulimit -f " + std::to_string(random() % 2000) +
                               "; exec '" VDSTO_PROGRAM "' --library '" + Library() +
                               "' backup --keep 3 '" + Dir() + "' > /dev/null 2>&1";
      const int code = WEXITSTATUS(std::system(line.c_str()));
      EXPECT_TRUE(code == 0 || code == 10 || code == 3) << code;
    } else {
      Program backup(Words({"--keep", "3"}));
      std::this_thread::sleep_for(whole * (random() % 1000) / 1000);
      CRkPhotoDBManager writer;
      ASSERT_TRUE(writer.OpenDB(Catalogue().c_str(), ""));
      EXPECT_TRUE(writer.InOneCommit([&] { RateAll(writer, 1 + (run + 1) % 5); }));
      writer.CloseDB();
      EXPECT_EQ(backup.Wait().code, 0);
      allowed.push_back(State(Library()));
    }
    const std::string newest = Newest();
    if (states.emplace(newest, allowed).second) ++made[run % 3];
    EXPECT_THAT(states[newest], testing::Contains(StateOfRestored()));
  }
  EXPECT_THAT(made, testing::Each(testing::Gt(0)));
  EXPECT_LT(made[0] + made[1], 66) << "some were disturbed in time";
  Backup({"--keep", "1"});
  EXPECT_EQ(RunVdsto(Words({"--verify"})).code, 0);
}

}  // namespace
