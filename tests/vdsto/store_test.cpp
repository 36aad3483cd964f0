#include <gmock/gmock.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>

#include "import_fixture.h"

namespace {

using namespace vdsto_test;
using nlohmann::json;
using namespace std::string_literals;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;
namespace fs = std::filesystem;

class StoreTest : public ImportTest {
 protected:
  std::string Images() const { return Count("store", "stat", "images"); }
  std::string Count(const char* group, const char* command, const char* field) const {
    return Vdsto({group, command}).Json()[field].dump();
  }

  void ExpectRefused(const std::vector<std::string>& arguments, int code,
                     const std::string& message) const {
    SCOPED_TRACE(testing::PrintToString(arguments));
    const Outcome outcome = Vdsto(arguments);
    EXPECT_EQ(outcome.code, code) << outcome.err;
    EXPECT_THAT(outcome.err, MatchesRegex("vdsto: [^\n]+\n"));
    EXPECT_THAT(outcome.err, HasSubstr(message));
    EXPECT_EQ(outcome.out, "");
  }

  /// All that must not be written over, and ways to it.
  void PlaceTargets() const {
    fs::rename(Pictures("gone.jpg"), temp_ / "gone.jpg");
    fs::create_symlink(Pictures(), temp_ / "link");
    fs::create_symlink(Pictures("a.jpg"), temp_ / "link.jpg");
    fs::create_symlink("nowhere", temp_ / "dangling.jpg");
    fs::create_hard_link(Pictures("a.jpg"), temp_ / "hard.jpg");
    fs::create_hard_link(Catalogue(), temp_ / "hard.vdb");
    WriteFile(temp_ / "locked/other.jpg", "mine");
    fs::permissions(temp_ / "locked", fs::perms::owner_read | fs::perms::owner_exec);
    WriteFile(temp_ / "kept.jpg", "mine");
    fs::permissions(temp_ / "kept.jpg", fs::perms::owner_read);
    EditPhoto(Pictures("moved.jpg"), [](PHOTOINFO& photo) {
      photo.SetFolderID(vdstomgr::kPersonalRoot);
      photo.SetFileName("renamed.jpg");
    });
  }

  /// What `vdsto check` says of each thing it looks at.
  json Verdicts(int code, const std::vector<std::string>& options = {}) const {
    std::vector<std::string> words{"check"};
    words.insert(words.end(), options.begin(), options.end());
    const Outcome outcome = Vdsto(words);
    EXPECT_EQ(outcome.code, code) << outcome.out << outcome.err;
    json verdicts;
    const json answer = outcome.Json();
    for (const json& check : answer["checks"]) verdicts[check["what"]] = check["verdict"];
    return verdicts;
  }
  static void FlipByte(const std::string& path, int offset) {
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    file.seekg(offset);
    const int byte = file.get();
    file.seekp(offset).put(static_cast<char>(byte ^ 0x55));
  }

  void ImportThree() const {
    for (const char* name : {"a.jpg", "x/b.png", "y/b.png"}) WritePicture(Pictures(name), 500, 300);
    WriteFile(Pictures("broken.jpg"), "");
    EXPECT_EQ(Counts(Import()), "4 0 0");
  }
};

TEST_F(StoreTest, OneImagePerPhotoWhateverHappens) {
  ImportThree();
  EXPECT_EQ(Images(), "3");
  EXPECT_EQ(Photos().at(Pictures("a.jpg"))["width"], 500) << "not the placeholder's size";
  WritePicture(Pictures("a.jpg"), 300, 500, 2);
  WriteFile(Pictures("x/b.png"), "broken now");
  EXPECT_EQ(Counts(Import()), "0 2 2");
  EXPECT_EQ(Images(), "2");
  {
    CRkPhotoDBManager catalogue;
    ASSERT_TRUE(catalogue.OpenDB(Catalogue().c_str(), ""));
    EXPECT_TRUE(catalogue.DeleteFolder(catalogue.GetFolderIDFromPath("개인 폴더/pictures/y")));
  }
  EXPECT_EQ(Counts(Import()), "1 0 3");
  EXPECT_EQ(Images(), "3") << "the deleted photo's image waits to be dropped";
  const json compacted = Vdsto({"store", "compact"}).Json();
  EXPECT_EQ(compacted["dropped"], 1);
  EXPECT_EQ(compacted["images"], 2);
  EXPECT_EQ(Images() + " " + Count("store", "stat", "removed"), "2 0");
  EXPECT_FALSE(fs::exists(Store() + ".bak"));
  EXPECT_EQ(Counts(Import()), "0 0 4");
  EXPECT_EQ(Vdsto({"stat"}).Json()["image_store_bytes"],
            fs::file_size(Store()) + fs::file_size(temp_ / "library/images.pdx"));
}

TEST_F(StoreTest, OlderCataloguesAndLostStoresGetTheirThumbnails) {
  ImportThree();
  const auto before = Photos();
  for (const auto& [original, photo] : before) {
    EditPhoto(original, [&](PHOTOINFO& row) {
      if (*row.GetLTBURL() != '\0') row.SetLTBURL(original.c_str());
    });
  }
  EXPECT_EQ(Counts(Import()), "0 3 1");
  EXPECT_EQ(Photos(), before);
  EXPECT_EQ(Images(), "3");
  fs::remove(Store());
  EXPECT_EQ(Counts(Import()), "0 3 1");
  EXPECT_EQ(Images() + " " + Counts(Import()), "3 0 0 4");
}

TEST_F(StoreTest, ThumbWritesAFileOrTheOutput) {
  ImportThree();
  const std::string target = temp_ / "out.jpg";
  const auto photos = Photos();
  const std::string guid = photos.at(Pictures("a.jpg"))["guid"];
  EXPECT_EQ(Vdsto({"thumb", "a.jpg", "-o", target}).Json()["guid"], guid);
  const std::string jpeg = ReadFile(target);
  EXPECT_THAT(jpeg, StartsWith("\xFF\xD8\xFF"));
  for (const std::string& name : {guid, Pictures("a.jpg"), std::string("pictures/a.jpg")})
    EXPECT_EQ(RunVdsto({"--library", Library(), "thumb", name, "-o", "-"}).out, jpeg) << name;
  ExpectRefused({"thumb", "broken.jpg", "-o", target}, 6, "broken.jpg has no thumbnail");
  ExpectRefused({"thumb", "c.jpg", "-o", target}, 6, "no photo c.jpg");
  ExpectRefused({"info", "b.png"}, 6, "2 photos are named b.png: pictures/x/b.png, pictures/y");
  ExpectRefused({"thumb", "a.jpg", "-o", target + "/x"}, 1, "cannot be written");
  EXPECT_EQ(ReadFile(target), jpeg);
  fs::remove(Store());
  ExpectRefused({"thumb", "a.jpg", "-o", "-"}, 6, "is not in the store");
}

/// Whatever the way to it is spelled: links, hard links, another place, another case.
TEST_F(StoreTest, ThumbNeverWritesOverAPictureOrTheLibrary) {
  ImportThree();
  WritePicture(Pictures("gone.jpg"));
  WritePicture(Pictures("moved.jpg"));
  Import();
  PlaceTargets();
  const std::string original = ReadFile(Pictures("a.jpg"));
  const struct {
    std::string target;
    int code;
    const char* message;
  } cases[] = {
      {Pictures("a.jpg"), 8, "belongs to the picture pictures/a.jpg"},
      {Pictures("x/../a.jpg"), 8, "belongs to the picture pictures/a.jpg"},
      {temp_ / "link/a.jpg", 8, "belongs to the picture pictures/a.jpg"},
      {temp_ / "link.jpg", 8, "belongs to the picture pictures/a.jpg"},
      {temp_ / "hard.jpg", 8, "belongs to the picture pictures/a.jpg"},
      {Pictures("moved.jpg"), 8, "belongs to the picture 개인 폴더/renamed.jpg"},
      {Pictures("gone.jpg"), 8, "belongs to the picture pictures/gone.jpg"},
      {temp_ / "link/GONE.JPG", 8, "belongs to the picture pictures/gone.jpg"},
      {Store(), 8, "is in the library's folder"},
      {temp_ / "library/new.jpg", 8, "is in the library's folder"},
      {temp_ / "hard.vdb", 8, "is in the library's folder"},
      {temp_ / "dangling.jpg", 8, "is a link to nowhere"},
      {temp_ / "locked", 2, "is a folder"},
      {"", 2, "is a folder"},
      {temp_ / "locked/new.jpg", 1, "Permission denied"},
      {temp_ / "locked/other.jpg", 1, "Permission denied"},
      {temp_ / "kept.jpg", 1, "Permission denied"},
  };
  for (const auto& c : cases) {
    ExpectRefused({"thumb", "a.jpg", "-o", c.target, "--force"}, c.code, c.message);
    EXPECT_EQ(ReadFile(Pictures("a.jpg")), original);
  }
  EXPECT_EQ(Vdsto({"store", "verify"}).code, 0);
}

TEST_F(StoreTest, ThumbReplacesOtherFilesByForceOnly) {
  ImportThree();
  WriteFile(temp_ / "other.jpg", "mine");
  fs::permissions(temp_ / "other.jpg", fs::perms::owner_all);
  fs::create_hard_link(temp_ / "other.jpg", temp_ / "mine too.jpg");
  ExpectRefused({"thumb", "a.jpg", "-o", temp_ / "other.jpg"}, 8, "exists already: --force");
  EXPECT_EQ(ReadFile(temp_ / "other.jpg"), "mine");
  EXPECT_EQ(Vdsto({"thumb", "a.jpg", "-fo", temp_ / "other.jpg"}).code, 0);
  EXPECT_EQ(ReadFile(temp_ / "other.jpg").substr(0, 2), "\xFF\xD8");
  EXPECT_EQ(fs::status(temp_ / "other.jpg").permissions(), fs::perms::owner_all);
  EXPECT_EQ(ReadFile(temp_ / "mine too.jpg"), "mine") << "another name of the file that was";
  EXPECT_EQ(Vdsto({"thumb", "a.jpg", "-o", "/dev/null"}).code, 0);
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

/// Every advice leads on to the next step, and in the end out.
TEST_F(StoreTest, DamageIsNamedAndRepaired) {
  ImportThree();
  EXPECT_EQ(Vdsto({"store", "verify"}).code, 0);
  EXPECT_EQ(Vdsto({"store", "sync"}).Json()["images"], 3);
  FlipByte(Store(), 2000);
  const Outcome verdict = Vdsto({"store", "verify"});
  EXPECT_EQ(verdict.code, 7);
  EXPECT_EQ(verdict.Json()["fault_counts"], json({{"record_checksum", 1}}));
  EXPECT_EQ(Verdicts(7)["images"], "wrong");
  const json repair = Vdsto({"store", "repair"}).Json();
  EXPECT_EQ(repair["images"], 2);
  EXPECT_THAT(repair["lost"][0]["photo"], StartsWith("pictures/")) << repair;
  EXPECT_TRUE(fs::exists(repair["kept_index"].get<std::string>())) << repair;
  EXPECT_EQ(Vdsto({"store", "verify"}).code, 0);
  EXPECT_EQ(Vdsto({"store", "repair"}).Json()["was_sound"], true);
  EXPECT_FALSE(fs::exists(temp_ / "library/images.pdx.old.2"));
  EXPECT_EQ(Count("store", "stat", "missing") + Verdicts(7)["thumbnails"].dump(), "1\"wrong\"");
  EXPECT_EQ(Counts(Import()), "0 1 3") << "the image that was left out is made again";
  EXPECT_EQ(Images(), "3");

  const int bytes = Vdsto({"store", "stat"}).Json()["data_bytes"];
  FlipByte(Store(), bytes - 700);
  EXPECT_EQ(Vdsto({"store", "compact"}).Json()["dropped_damaged"], 1);
  EXPECT_EQ(Counts(Import()), "0 1 3");
  WriteFile(temp_ / "library/images.pdx", "no index");
  EXPECT_EQ(Counts(Import()), "0 0 4") << "an import repairs what it cannot open";
  CutFile(Store(), 100);
  ExpectRefused({"thumb", "a.jpg", "-o", "-"}, 3, "run vdsto store repair");
  const json aside = Vdsto({"store", "repair"}).Json();
  EXPECT_EQ(fs::file_size(aside["set_aside"].get<std::string>()), 100U);
  EXPECT_EQ(Counts(Import()), "0 3 1");
  for (const char* name : {"images.pdb", "images.pdx"})
    fs::rename(Library() + "/" + name, Library() + "/" + name + ".bak");
  EXPECT_EQ(Images() + Count("store", "stat", "compaction_cut_off"), "3true");
  EXPECT_EQ(Vdsto({"thumb", "a.jpg", "-o", "-"}).code, 0);
  EXPECT_EQ(Counts(Import()), "0 0 4");
  EXPECT_THAT(Verdicts(0), testing::Each("good"));
}

TEST_F(StoreTest, AStoreInUseAndAFullDiskAreToldInOneLine) {
  WritePicture(Pictures("a.jpg"), 500, 400);
  const auto run_limited = [&](const std::string& blocks, const std::string& command) {
    const std::string line = "trap '' XFSZ; ulimit -f " + blocks +
                             "; exec '" VDSTO_PROGRAM "' --library '" + Library() + "' " + command +
                             " 2> '" + temp_ / "err" + "'";
    return WEXITSTATUS(std::system(line.c_str()));
  };
  EXPECT_EQ(run_limited("50000", "import '" + Pictures() + "'"), 5);
  EXPECT_THAT(ReadFile(temp_ / "err"),
              HasSubstr("takes no more images (images.pdb: file too large)"));
  EXPECT_EQ(Vdsto({"stat"}).Json()["photos"], 0) << "no row without its image";
  EXPECT_EQ(Counts(Import()), "1 0 0");
  WriteFile(temp_ / "out/old.jpg", "mine");
  for (const char* name : {"old.jpg", "new.jpg"}) {
    EXPECT_EQ(run_limited("80", "thumb a.jpg -fo '" + temp_ / ("out/"s + name) + "'"), 1);
    EXPECT_THAT(ReadFile(temp_ / "err"), HasSubstr("cannot be written: File too large"));
  }
  EXPECT_EQ(ReadFile(temp_ / "out/old.jpg"), "mine");
  EXPECT_EQ(std::distance(fs::directory_iterator(temp_ / "out"), {}), 1)
      << "nothing is left behind";
  CRkPhotoImageStorage images;
  ASSERT_TRUE(images.OpenFile(Store().c_str()));
  for (const auto& arguments :
       std::vector<std::vector<std::string>>{{"import", Pictures()}, {"store", "sync"}})
    ExpectRefused(arguments, 3, "is in use by another process");
  EXPECT_EQ(Vdsto({"thumb", "a.jpg", "-o", "-"}).out.substr(0, 2), "\xFF\xD8");
  EXPECT_EQ(Vdsto({"store", "verify"}).code, 0);
}

TEST_F(StoreTest, CheckFindsWhatIsWrongAndChangesNothing) {
  ImportThree();
  Vdsto({"find", "a"});
  EXPECT_THAT(Verdicts(0, {"--originals"}), testing::Each("good"));
  WritePicture(Pictures("a.jpg"), 40, 40, 9);
  fs::remove(Pictures("x/b.png"));
  EditPhoto(Pictures("y/b.png"), [](PHOTOINFO& photo) { photo.SetFolderID(4711); });
  {
    CRkPhotoDBManager catalogue;
    ASSERT_TRUE(catalogue.OpenDB(Catalogue().c_str(), ""));
    const auto folder = catalogue.GetFolderIDFromPath("개인 폴더/pictures/x");
    ASSERT_TRUE(catalogue.MoveFolder(folder, folder));
    EXPECT_TRUE(
        catalogue.DeletePhoto(Photos().at(Pictures("a.jpg"))["guid"].get<std::string>().c_str()));
  }
  const json verdicts = Verdicts(7, {"--originals"});
  EXPECT_EQ(verdicts, json({{"catalogue", "good"},
                            {"facts", "good"},
                            {"search", "note"},
                            {"images", "good"},
                            {"thumbnails", "good"},
                            {"orphans", "note"},
                            {"folders", "wrong"},
                            {"photos", "wrong"},
                            {"originals", "wrong"}}));
  const std::string bytes = ReadFile(Catalogue());
  WriteFile(Catalogue(), bytes.substr(0, 4096) + std::string(bytes.size() - 4096, 'x'));
  EXPECT_EQ(Verdicts(7)["catalogue"], "wrong");
  EXPECT_THAT(Vdsto({"ls"}).err, HasSubstr("vdsto check"));
}

TEST_F(StoreTest, SqlReadsAndChangesNothing) {
  ImportThree();
  const std::string count = "SELECT COUNT(*) AS n FROM PhotoMaster WHERE szFileName LIKE 'B.*'";
  EXPECT_EQ(Vdsto({"sql", count}).Json(), json::parse(R"([{"n": 2}])"));
  EXPECT_EQ(RunVdsto({"--library", Library(), "sql", count}).out, "n\n2\n");
  EXPECT_EQ(Vdsto({"sql", "--facts", "SELECT szGUID FROM PhotoFacts"}).Json().size(), 4U);
  ExpectRefused({"sql", "--search", count}, 2, "'PhotoMaster'");
  EXPECT_EQ(Vdsto({"sql", "--search", "SELECT MAX(dxFileSize) AS n FROM SearchPhotoMaster"}).code,
            0);
  fs::remove(Library() + "/search.vdb");
  ExpectRefused({"sql", "--search", count}, 6, "no search.vdb");
  ExpectRefused({"sql", "DELETE FROM PhotoMaster"}, 8, "only reads");
  ExpectRefused({"sql", "SELECT 1 FROM TagInfo; DELETE FROM PhotoMaster"}, 2, "");
  EXPECT_EQ(Vdsto({"stat"}).Json()["photos"], 4);
}

}  // namespace
