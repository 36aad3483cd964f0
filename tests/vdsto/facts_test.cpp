#include "tools/vdsto/library/facts_database.h"

#include <gtest/gtest.h>

#include "import_fixture.h"
#include "tools/vdsto/library/database_password.h"

namespace {

using namespace vdsto_test;
using vdsto::FactsDatabase;
using vdsto::PhotoFacts;
namespace fs = std::filesystem;

const std::string kGuid = "01A2008B-BC66-78A0-9B74-781824158F65";

PhotoFacts Example(const std::string& guid) {
  return {guid,
          "/disk/\xFF " + std::string(300, 'n') + "/흰.jpg",
          {5'000'000'123, 0xFEDCBA98'87654321},
          "900150983cd24fb0d6963f7d28e17f72",
          vdsto::PictureState::kDamaged,
          "it's cut",
          {37.5665, -122.25, {}},
          "NIKON",
          std::string(80, 'm'),
          "렌즈",
          vdsto::DateSource::kDigitized,
          3,
          1'700'000'000,
          4032,
          70'000,
          {7, 0xFEDCBA98'87654321},
          {4, "제목", "it's", {"바다"}}};
}

std::string RowAsText(const std::string& path, const std::string& password) {
  CDaoDatabase database;
  vdsto::OpenUnderPassword(database, path, password);
  CDaoRecordset rows(&database);
  rows.Open(dbOpenDynaset, "SELECT * FROM PhotoFacts");
  std::string text;
  for (int i = 0; i < rows.GetFieldCount(); ++i)
    text += std::string(rows.GetFieldValue(i).ToText()) + "|";
  return text;
}

struct FactsTest : ImportTest {
  std::string Path() const { return temp_ / "facts.vdb"; }
};

TEST_F(FactsTest, KeepEveryColumnUnderAPassword) {
  FactsDatabase facts(Path(), "열려라 참깨 열려라 참깨 열려라");
  facts.Prepare();
  PhotoFacts other = Example("02" + kGuid.substr(2));
  other.place = {{}, {}, -3.5};
  facts.Put(std::vector{Example(kGuid), other});
  EXPECT_EQ(facts.Of(kGuid), Example(kGuid));
  facts.SetGone({kGuid}, 7);
  EXPECT_EQ(facts.Of({kGuid, other.guid, "x'y"}).at(kGuid).gone_since, 7);
  EXPECT_EQ(facts.Of(other.guid), other);
  facts.Put(std::vector{Example(kGuid)});
  facts.Remove({other.guid});
  facts.SetPlaces({{4, "/a", "1"}});
  facts.SetPlaces({{5, "/A\xFE", "2"}, {6, "/a", "3"}});
  EXPECT_EQ(facts.Places(), (std::vector<vdsto::ImportPlace>{{5, "/A\xFE", "2"}, {6, "/a", "3"}}));
  facts.SetUnreadable({{"/a\xFE", "locked"}});
  EXPECT_EQ(facts.Unreadable(), (std::vector<vdsto::UnreadableFile>{{"/a\xFE", "locked"}}));
  EXPECT_EQ(RowAsText(Path(), "열려라 참깨 열려라 참깨"),
            kGuid + "|file:///disk/%FF%20" + std::string(300, 'n') +
                "/%ED%9D%B0.jpg|5000000123|-19088744|-2023406815|"
                "900150983cd24fb0d6963f7d28e17f72|1|it's cut|37.5665|-122.25||NIKON|" +
                std::string(80, 'm') +
                "|렌즈|2|3|1700000000|4032|70000|7/18364758544779395873|{\"description\":\"it's\","
                "\"keywords\":[\"바다\"],\"rating\":4,\"title\":\"제목\"}|");
}

/// Reading never makes a file and never fails; an import makes it again, and keeps the old one.
TEST_F(FactsTest, AreMadeAgainWhenLostOrUnreadable) {
  WritePicture(Pictures("a.jpg"));
  Import();
  const auto sound = ReadFile(Library() + "/facts.vdb");
  const auto before = Vdsto({"info", Pictures("a.jpg")}).Json();
  EXPECT_EQ(before["original_path"], Pictures("a.jpg"));
  EXPECT_EQ(before["picture"]["state"], "good");
  const auto break_file = [&](const std::string& how) {
    fs::remove(Library() + "/facts.vdb");
    if (how == "gone") return;
    CDaoDatabase database;
    WriteFile(Library() + "/facts.vdb", how == "cut" ? sound.substr(0, 9000) : how);
    if (how != "newer" && how != "unfinished" && how != "secret") return;
    fs::remove(Library() + "/facts.vdb");
    database.Create((Library() + "/facts.vdb").c_str());
    if (how == "secret") database.NewPassword("", "secret");
    if (how == "unfinished") return database.Execute("CREATE TABLE Other (n INTEGER)");
    database.Execute("CREATE TABLE FactsInfo (nVersion INTEGER)");
    database.Execute("INSERT INTO FactsInfo (nVersion) VALUES (99)");
  };
  for (const char* how : {"gone", "", "no database", "cut", "newer", "unfinished", "secret"}) {
    break_file(how);
    const bool was_there = fs::exists(Library() + "/facts.vdb");
    const Outcome info = Vdsto({"info", Pictures("a.jpg")});
    EXPECT_EQ(info.code, 0) << how << info.err;
    EXPECT_FALSE(info.Json().contains("original_path")) << how;
    EXPECT_EQ(fs::exists(Library() + "/facts.vdb"), was_there) << how;
    EXPECT_EQ(Counts(Import()), "0 1 0") << how;
    EXPECT_EQ(Vdsto({"info", Pictures("a.jpg")}).Json(), before) << how;
    EXPECT_EQ(fs::remove(Library() + "/facts.vdb.old"), was_there) << how;
    EXPECT_EQ(Counts(Import()), "0 0 1") << how;
  }
}

}  // namespace
