#include <algorithm>
#include <fstream>
#include <thread>

#include "tests/dao/database_fixture.h"
#include "tests/system.h"
#include "vdstomgr/platform/dao/engine.h"

namespace {

namespace fs = std::filesystem;

class FileTest : public DatabaseTest {
 protected:
  /// Opens the test file; returns the error number, 0 when it opens.
  int OpenError(const char* password = "", const char* name = "test.vdb") {
    return NumberOf([&] {
      CDaoDatabase db;
      db.Open(Path(name).c_str(), false, false, (";PWD=" + std::string(password)).c_str());
    });
  }

  void MakeTable(int rows) {
    Run("CREATE TABLE T (id INTEGER PRIMARY KEY, t MEMO)");
    db_.BeginGroup();
    const std::string text(500, 'x');
    for (int i = 0; i < rows; ++i) {
      Run("INSERT INTO T VALUES (" + std::to_string(i) + ", '" + text + "')");
    }
    db_.EndGroup();
  }

  std::vector<std::string> FilesInFolder() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_)) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
};

TEST_F(FileTest, PasswordsAndForeignFilesEachHaveTheirError) {
  MakeTable(1);
  db_.NewPassword("", "비밀 ';DROP");
  EXPECT_EQ(NumberOf([&] { db_.NewPassword("wrong", "x"); }), 3031);
  db_.Close();
  EXPECT_EQ(FilesInFolder(), Lines{"test.vdb"});
  EXPECT_EQ(OpenError("비밀 ';DROP"), 0);
  EXPECT_EQ(OpenError("wrong"), 3031);
  EXPECT_EQ(OpenError(), 3031);
  db_.Open(Path().c_str(), false, false, ";PWD=비밀 ';DROP");
  db_.NewPassword("비밀 ';DROP", "");
  EXPECT_EQ(Rows("SELECT id FROM T"), Lines{"0"});
  db_.Close();
  EXPECT_EQ(OpenError(), 0);
  EXPECT_EQ(OpenError("any"), 3031);

  EXPECT_EQ(OpenError("", "missing.vdb"), 3024);
  EXPECT_EQ(OpenError("", "no/such/folder.vdb"), 3044);
  EXPECT_EQ(OpenError("", "."), 3343);
  for (const size_t size : {size_t{0}, size_t{10}, size_t{5000}}) {
    std::ofstream(Path("text.vdb")) << std::string(size, 't');
    EXPECT_EQ(OpenError("", "text.vdb"), 3343) << size;
    EXPECT_EQ(OpenError("pw", "text.vdb"), 3343) << size;
  }
  EXPECT_EQ(NumberOf([&] { CDaoDatabase().Create(Path().c_str()); }), 3204);
  EXPECT_EQ(NumberOf([&] { CDaoDatabase().Create(Path("no/such/x").c_str()); }), 3044);
}

TEST_F(FileTest, WhatIsNoFileNameMakesAndDeletesNothing) {
  fs::current_path(folder_);  // where such names would leave their files
  fs::create_directory("folder");
  constexpr const char* kLink = "link";
  std::error_code has_no_links;  // as Wine, and Windows for most users
  fs::create_symlink("no drive/a.vdb", kLink, has_no_links);
  for (const char* file : {"file:", "x"}) std::ofstream(file) << "kept";
  const Lines before = FilesInFolder();
  const struct {
    const char* name;
    int created;
    int opened;
  } kCases[] = {{"", 3044, 3044},       {nullptr, 3044, 3044},   {":memory:", 3044, 3044},
                {"file:", 3044, 3044},  {"file:x", 3044, 3044},  {"file:a?mode=memory", 3044, 3044},
                {"folder", 3044, 3343}, {"folder/", 3044, 3343}, {"new/", 3044, 3044},
                {"x/", 3044, 3044},     {"x/a.vdb", 3044, 3044}, {kLink, 3044, 3044},
                {"x", 3204, 3343}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.name == nullptr ? "null" : c.name);
    if (has_no_links && c.name == kLink) continue;
    CDaoDatabase db;
    EXPECT_EQ(NumberOf([&] { db.Create(c.name); }), c.created);
    EXPECT_EQ(NumberOf([&] { db.Open(c.name); }), c.opened);
    EXPECT_FALSE(db.IsOpen());
  }
  for (const char* name : {"", ":memory:", "file:", "folder", "folder/"}) {
    EXPECT_FALSE(vdstomgr::dao::DeleteDatabase(name)) << name;
  }
  EXPECT_EQ(FilesInFolder(), before);
  fs::current_path(folder_.parent_path());  // no folder is deleted where a process is
}

TEST_F(FileTest, AFileThatLostItsTailIsRefused) {
  MakeTable(200);
  db_.Close();
  const auto size = fs::file_size(Path());
  for (const auto kept :
       {size - 1, size - 4096, size / 2, std::uintmax_t{4096}, std::uintmax_t{101}}) {
    fs::remove(Path("cut.vdb"));
    fs::copy_file(Path(), Path("cut.vdb"));
    fs::resize_file(Path("cut.vdb"), kept);
    EXPECT_EQ(OpenError("", "cut.vdb"), 3049) << kept;
  }
  EXPECT_EQ(OpenError(), 0);
}

TEST_F(FileTest, AnOpenFileIsNotDeletedAndKeepsItsLocks) {
  MakeTable(1);
  EXPECT_FALSE(vdstomgr::dao::DeleteDatabase(Path()));
  EXPECT_EQ(OpenError(), 0);  // opened and closed beside the first one
#if !defined(_WIN32)          // where locks are those of an open file, not of a process
  EXPECT_EQ(InChild([&] { return vdstomgr::dao::DeleteDatabase(Path()) ? 1 : 0; }), 0);
#endif
  EXPECT_EQ(Rows("SELECT id FROM T"), Lines{"0"});
  db_.Close();
  EXPECT_TRUE(vdstomgr::dao::DeleteDatabase(Path()));
  EXPECT_EQ(FilesInFolder(), Lines{});
  EXPECT_TRUE(vdstomgr::dao::DeleteDatabase(Path()));
}

TEST_F(FileTest, AGroupIsOneCommit) {
  Run("CREATE TABLE T (id INTEGER PRIMARY KEY)");
  CRkDaoDatabase other;
  other.Open(Path().c_str());
  const auto seen = [&] {
    CRkDaoRecordset rs(&other);
    rs.Open(dbOpenDynaset, "SELECT COUNT(*) FROM T");
    return rs.GetFieldValue(0).ToInteger();
  };
  db_.BeginGroup();
  Run("INSERT INTO T VALUES (1)");
  db_.BeginGroup();
  Run("INSERT INTO T VALUES (2)");
  db_.EndGroup();
  EXPECT_EQ(ErrorOf("INSERT INTO T VALUES (2)"), 3022);
  EXPECT_EQ(seen(), 0);
  db_.EndGroup();
  EXPECT_EQ(seen(), 2);  // what was done before the failure is kept

  db_.BeginGroup();  // a very long group is committed in pieces
  for (int i = 10; i < 10'010; ++i) Run("INSERT INTO T VALUES (" + std::to_string(i) + ")");
  EXPECT_GT(seen(), 4000);
  db_.EndGroup();
  EXPECT_EQ(seen(), 10'002);
}

TEST_F(FileTest, TwoWritersWaitForEachOther) {
  Run("CREATE TABLE T (id COUNTER PRIMARY KEY, who INTEGER)");
  const auto write = [this](int who) {
    CRkDaoDatabase db;
    db.Open(Path().c_str());
    for (int group = 0; group < 20; ++group) {
      db.BeginGroup();
      for (int i = 0; i < 10; ++i) {
        db.Execute(("INSERT INTO T (who) VALUES (" + std::to_string(who) + ")").c_str());
      }
      db.EndGroup();
    }
  };
  std::thread first(write, 1);
  std::thread second(write, 2);
  first.join();
  second.join();
  EXPECT_EQ(Rows("SELECT who, COUNT(*) FROM T GROUP BY who"), (Lines{"1|200", "2|200"}));
}

}  // namespace
