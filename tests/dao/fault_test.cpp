#include <functional>

#include "tests/dao/database_fixture.h"
#include "tests/dao/faulty_disk.h"
#include "tests/dao/faulty_memory.h"
#include "tests/dao/integrity.h"
#include "vdstomgr/platform/dao/engine.h"

namespace {

namespace fs = std::filesystem;

/// What is done to the file while calls fail, and what it may have become.
struct Operation {
  const char* name;
  std::function<void()> run;
  std::function<void(bool done)> check;
};

class FaultTest : public DatabaseTest {
 protected:
  /// The files of a catalogue whose process was killed: the last commits are in the log only.
  void SetUp() override {
    DatabaseTest::SetUp();
    Run("CREATE TABLE T (id INTEGER PRIMARY KEY, name VARCHAR(20), note MEMO)");
    Run("CREATE INDEX I ON T (name)");
    db_.BeginGroup();
    for (int i = 0; i < 100; ++i) {
      Run("INSERT INTO T VALUES (" + std::to_string(i) + ", 'old', '" + std::string(300, 'x') +
          "')");
    }
    db_.EndGroup();
    for (const char* end : {"", "-wal"}) fs::copy_file(Path() + end, Path("killed.vdb") + end);
    db_.Close();
  }

  void Prepare() {
    for (const char* end : {"-wal", "-shm", "-journal", ""}) fs::remove(Path() + end);
    for (const char* end : {"", "-wal"}) fs::copy_file(Path("killed.vdb") + end, Path() + end);
  }

  void Write() {
    db_.BeginGroup();
    try {
      CRkDaoRecordset rs(&db_);
      rs.Open(dbOpenDynaset, "SELECT * FROM T WHERE id < 40");
      for (; !rs.IsEOF(); rs.MoveNext()) {
        rs.Edit();
        rs.SetFieldValue("name", "new");
        rs.Update();
      }
      Run("INSERT INTO T (id, name) VALUES (1000, 'new one')");
      Run("DELETE FROM T WHERE id > 50 AND id < 60");
    } catch (...) {
      db_.EndGroup();
      throw;
    }
    db_.EndGroup();
  }

  /// How many rows have been written, -1 when that cannot be read.
  int Written(const char* name = "test.vdb") {
    CRkDaoDatabase db;
    EXPECT_EQ(NumberOf([&] { db.Open(Path(name).c_str()); }), 0);
    if (!db.IsOpen()) return -1;
    ExpectSound(db);
    CRkDaoRecordset rs(&db);
    rs.Open(dbOpenDynaset, "SELECT COUNT(*) FROM T WHERE name LIKE 'new*'");
    return static_cast<int>(rs.GetFieldValue(0).ToInteger());
  }

  std::vector<Operation> Operations() {
    return {
        {"create",
         [this] {
           db_.Create(Path("made.vdb").c_str());
           Run("CREATE TABLE T (id INTEGER PRIMARY KEY, name MEMO)");
         },
         [this](bool done) {
           EXPECT_TRUE(db_.IsOpen() || !can_clean_up_ || !fs::exists(Path("made.vdb")));
           db_.Close();
           EXPECT_TRUE(!done || Written("made.vdb") == 0);
           EXPECT_TRUE(vdstomgr::dao::DeleteDatabase(Path("made.vdb")));
         }},
        {"open and write",
         [this] {
           db_.Open(Path().c_str());
           Write();
         },
         [this](bool done) {
           if (db_.IsOpen()) Run("UPDATE T SET note = 'mended' WHERE id = 99");
           db_.Close();
           const int written = Written();
           EXPECT_TRUE(done ? written == 41 : written >= 0 && written <= 41) << written;
         }},
        {"delete",
         [this] {
           if (!vdstomgr::dao::DeleteDatabase(Path())) throw std::runtime_error("kept");
         },
         [this](bool done) {
           EXPECT_FALSE(done && fs::exists(Path()));
           EXPECT_TRUE(!fs::exists(Path()) || Written() == 0);
         }},
    };
  }

  /// Runs every operation again and again with a later call failing each time, until none fails.
  /// The failures must be told as `message`.
  template <class FailAt, class Heal, class HasFailed>
  void Sweep(std::string_view message, FailAt fail_at, Heal heal, HasFailed has_failed) {
    for (const Operation& operation : Operations()) {
      SCOPED_TRACE(operation.name);
      bool failed = true;
      int call = 0;
      while (failed && !HasFailure()) {
        SCOPED_TRACE(call + 1);
        Prepare();
        bool done = true;
        fail_at(++call);
        try {
          operation.run();
        } catch (const std::exception& error) {
          done = false;
          EXPECT_TRUE(error.what() == message || std::string("kept") == error.what())
              << error.what();
        }
        failed = has_failed();
        heal();
        EXPECT_TRUE(done || failed);
        operation.check(done);
      }
      EXPECT_GT(call, 10);
    }
  }

  bool can_clean_up_ = true;
};

TEST_F(FaultTest, FailingFileCallsLeaveTheFileSound) {
  using Fault = FaultyDisk::Fault;
  FaultyDisk disk;
  for (const Fault fault : {Fault::Once, Fault::FromThenOn, Fault::Full}) {
    SCOPED_TRACE(static_cast<int>(fault));
    can_clean_up_ = fault != Fault::FromThenOn;
    Sweep(
        fault == Fault::Full ? "Not enough space on disk." : "Disk or network error.",
        [&](int call) { disk.FailAt(call, fault); }, [&] { disk.Heal(); },
        [&] { return disk.HasFailed(); });
  }
  EXPECT_EQ(disk.OpenFiles(), 0);
}

TEST_F(FaultTest, FailingAllocationsLeaveTheFileSound) {
  FaultyMemory memory;
  FaultyDisk disk;
  can_clean_up_ = false;  // the system's own layer, out of memory, may leave an empty file
  Sweep(
      std::bad_alloc().what(), [&](int call) { memory.FailAt(call); }, [&] { memory.Heal(); },
      [&] { return memory.HasFailed(); });
}

}  // namespace
