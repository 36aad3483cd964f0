#include <gmock/gmock.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>

#include "import_fixture.h"

namespace {

using namespace vdsto_test;
using nlohmann::json;
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
  {
    CRkPhotoDBManager catalogue;
    ASSERT_TRUE(catalogue.OpenDB(Catalogue().c_str(), ""));
    for (const auto& [original, photo] : before) {
      PHOTOINFO row;
      ASSERT_TRUE(catalogue.GetPhotoInfo(photo["guid"].get<std::string>().c_str(), row));
      if (*row.GetLTBURL() != '\0') row.SetLTBURL(original.c_str());
      EXPECT_TRUE(catalogue.SetPhotoInfo(row, false));
    }
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

TEST_F(StoreTest, DamageIsNamedAndRepaired) {
  ImportThree();
  EXPECT_EQ(Vdsto({"store", "verify"}).code, 0);
  EXPECT_EQ(Vdsto({"store", "sync"}).Json()["images"], 3);
  std::fstream file(Store(), std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(2000).put('\x55');
  file.close();
  const Outcome verdict = Vdsto({"store", "verify"});
  EXPECT_EQ(verdict.code, 7);
  EXPECT_EQ(verdict.Json()["faults"][0]["fault"], "record_checksum");
  ExpectRefused({"store", "compact"}, 7, "run vdsto store repair");
  const json repair = Vdsto({"store", "repair"}).Json();
  EXPECT_EQ(repair["images"], 2);
  EXPECT_TRUE(fs::exists(repair["kept_index"].get<std::string>())) << repair;
  EXPECT_EQ(Counts(Import()), "0 1 3") << "the image that was left out is made again";
  EXPECT_EQ(Images(), "3");

  WriteFile(temp_ / "library/images.pdx", "no index");
  ExpectRefused({"import", Pictures()}, 3, "run vdsto store verify, then vdsto store repair");
  EXPECT_EQ(Vdsto({"store", "repair"}).code, 0);
  for (const char* name : {"images.pdb", "images.pdx"})
    fs::rename(Library() + "/" + name, Library() + "/" + name + ".bak");
  ExpectRefused({"import", Pictures()}, 3, "a compaction left its pieces");
  EXPECT_EQ(Vdsto({"store", "repair"}).code, 0);
  EXPECT_EQ(Counts(Import()), "0 0 4");
}

TEST_F(StoreTest, AStoreInUseAndAFullDiskAreToldInOneLine) {
  WritePicture(Pictures("a.jpg"));
  const std::string limited =
      "trap '' XFSZ; ulimit -f 50000; exec '" VDSTO_PROGRAM "' --library '" + Library() +
      "' import '" + Pictures() + "' 2> '" + temp_ / "err" + "'";
  EXPECT_EQ(WEXITSTATUS(std::system(limited.c_str())), 5);
  EXPECT_THAT(ReadFile(temp_ / "err"), HasSubstr("takes no more images: is the disk full?"));
  EXPECT_EQ(Vdsto({"stat"}).Json()["photos"], 0) << "no row without its image";
  EXPECT_EQ(Counts(Import()), "1 0 0");
  CRkPhotoImageStorage images;
  ASSERT_TRUE(images.OpenFile(Store().c_str()));
  for (const auto& arguments :
       std::vector<std::vector<std::string>>{{"import", Pictures()}, {"store", "sync"}})
    ExpectRefused(arguments, 3, "is in use by another process");
  EXPECT_EQ(Vdsto({"thumb", "a.jpg", "-o", "-"}).out.substr(0, 2), "\xFF\xD8");
  EXPECT_EQ(Vdsto({"store", "verify"}).code, 0);
}

}  // namespace
