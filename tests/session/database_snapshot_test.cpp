#include "vdstomgr/session/database_snapshot.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "vdstomgr/platform/dao/dao_exception.h"
#include "vdstomgr/platform/dao/rk_dao.h"
#include "vdstomgr/platform/text/code_page.h"

namespace vdstomgr {
namespace {

namespace fs = std::filesystem;

class Snapshot : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    SetTextCodePage(TextCodePage::utf8);
    fs::remove_all(folder_);
    fs::create_directories(folder_);
    writer_.Create(Path("a.vdb").c_str());
    if (*GetParam() != '\0') writer_.NewPassword("", GetParam());
    writer_.ExecuteOrThrow("CREATE TABLE T (n INTEGER CONSTRAINT P PRIMARY KEY, s VARCHAR(200))");
    Add(0, 3000);
  }
  void TearDown() override {
    writer_.Close();
    fs::remove_all(folder_);
  }

  std::string Path(const char* name) const { return (folder_ / name).string(); }
  void Add(int from, int to) {
    writer_.BeginGroup();
    for (int n = from; n < to; ++n)
      writer_.ExecuteOrThrow(("INSERT INTO T (n, s) VALUES (" + std::to_string(n) + ", '" +
                              std::string(190, 'x') + "')")
                                 .c_str());
    writer_.EndGroup();
  }
  int Rows(const char* name) const {
    CRkDaoDatabase database;
    database.Open(Path(name).c_str(), false, false, (";PWD=" + std::string(GetParam())).c_str());
    CRkDaoRecordset rows(&database);
    rows.Open(dbOpenDynaset, "SELECT COUNT(*) AS c FROM T");
    return std::stoi(rows.GetFieldValue("c").ToText().Str());
  }
  template <class Step>
  static int CodeOf(Step step) {
    try {
      return step(), 0;
    } catch (const CDaoException& error) {
      return error.Code();
    }
  }

  fs::path folder_ = fs::temp_directory_path() / ("vdsto-snapshot-" + std::to_string(getpid()));
  CRkDaoDatabase writer_;
};

TEST_P(Snapshot, IsTheFileAsItWasWhileSomebodyWrites) {
  DatabaseSnapshot snapshot(Path("a.vdb").c_str(), GetParam());
  Add(3000, 4000);
  int steps = 0;
  EXPECT_TRUE(snapshot.CopyTo(Path("b.vdb").c_str(), [&](int done, int total) {
    if (steps++ == 0) Add(4000, 8000), writer_.ExecuteOrThrow("DELETE FROM T WHERE n < 100");
    EXPECT_LE(done, total);
    return true;
  }));
  EXPECT_EQ(Rows("b.vdb"), 3000);
  EXPECT_EQ(Rows("a.vdb"), 7900);
  std::string start(15, ' ');
  std::ifstream(Path("b.vdb")).read(start.data(), 15);
  EXPECT_EQ(start == "SQLite format 3", *GetParam() == '\0');
  EXPECT_FALSE(fs::exists(Path("b.vdb-wal")));
}

TEST_P(Snapshot, LeavesNoFileWhenItEndsEarlyAndTouchesNoneThatIsThere) {
  DatabaseSnapshot snapshot(Path("a.vdb").c_str(), GetParam());
  EXPECT_FALSE(snapshot.CopyTo(Path("b.vdb").c_str(), [](int, int) { return false; }));
  EXPECT_FALSE(fs::exists(Path("b.vdb")));
  std::ofstream(Path("mine.vdb")) << "mine";
  EXPECT_EQ(CodeOf([&] { snapshot.CopyTo(Path("mine.vdb").c_str()); }), 3204);
  EXPECT_EQ(fs::file_size(Path("mine.vdb")), 4u);
  EXPECT_EQ(CodeOf([&] { DatabaseSnapshot(Path("a.vdb").c_str(), "no"); }), 3031);
  EXPECT_EQ(CodeOf([&] { DatabaseSnapshot(Path("none.vdb").c_str(), GetParam()); }), 3024);
}

INSTANTIATE_TEST_SUITE_P(Plain, Snapshot, testing::Values("", "비밀 번호"));

}  // namespace
}  // namespace vdstomgr
