#include "tests/dao/database_fixture.h"
#include "vdstomgr/platform/dao/engine.h"

namespace {

class RecordsetTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    Run("CREATE TABLE T (id INTEGER PRIMARY KEY, pos INTEGER, name VARCHAR(5), b BYTE)");
    Run("CREATE INDEX P ON T (pos)");
    for (int i = 1; i <= 5; ++i) {
      Run("INSERT INTO T VALUES (" + std::to_string(i) + ", " + std::to_string(10 * i) + ", 'r" +
          std::to_string(i) + "', 0)");
    }
  }
};

TEST_F(RecordsetTest, AnEditedRowNeitherMovesNorReappears) {
  CRkDaoRecordset rs(&db_);
  rs.Open(dbOpenDynaset, "SELECT * FROM T ORDER BY pos");
  Lines visited;
  for (; !rs.IsEOF(); rs.MoveNext()) {
    visited.push_back(rs.GetFieldValue("name").ToText().GetString());
    rs.Edit();
    rs.SetFieldValue("POS", std::uint32_t{100});  // behind all the others
    rs.Update();
    EXPECT_EQ(rs.GetFieldValue("pos").ToInteger(),
              100);  // the row stays current, with its new value
    ASSERT_LE(visited.size(), 5u);
  }
  EXPECT_EQ(visited, (Lines{"r1", "r2", "r3", "r4", "r5"}));
  EXPECT_EQ(Rows("SELECT COUNT(*) FROM T WHERE pos = 100"), Lines{"5"});
}

TEST_F(RecordsetTest, AWalkOutlivesWritesBesideIt) {
  CRkDaoRecordset rs(&db_);
  rs.Open(dbOpenDynaset, "SELECT * FROM T ORDER BY id");
  CRkDaoRecordset joined(&db_);
  joined.Open(dbOpenDynaset,
              "SELECT a.name, b.pos FROM T as a INNER JOIN T as b ON a.id = b.id "
              "ORDER BY a.id");
  EXPECT_EQ(Row(joined), "r1|10");
  EXPECT_EQ(Row(rs), "1|10|r1|0");
  Run("DELETE FROM T WHERE id = 3");
  Run("UPDATE T SET name = 'new' WHERE id = 4");
  Run("DELETE FROM T WHERE id = 5");
  Run("INSERT INTO T VALUES (9, 90, 'r9', 0)");  // takes over the row key of the deleted last row
  rs.MoveNext();
  EXPECT_EQ(Row(rs), "2|20|r2|0");
  rs.MoveNext();
  EXPECT_EQ(NumberOf([&] { Row(rs); }), 3167);
  rs.MoveNext();
  EXPECT_EQ(Row(rs), "4|40|new|0");
  rs.MoveNext();
  EXPECT_EQ(NumberOf([&] { Row(rs); }), 3167);
  rs.MoveNext();
  EXPECT_TRUE(rs.IsEOF());
  EXPECT_EQ(NumberOf([&] { rs.MoveNext(); }), 3021);
  joined.Move(2);
  EXPECT_EQ(Row(joined), "r3|30");  // rows without keys are kept by value
  Run("DROP TABLE T");              // an open recordset does not stand in the way
}

TEST_F(RecordsetTest, AWindowIsAPartOfAnyQuery) {
  for (const char* sql : {"SELECT * FROM T WHERE name <> 'it''s' AND id > 1 ORDER BY pos",
                          "SELECT TOP 4 id, pos, name, b FROM T WHERE id > 1 ORDER BY id"}) {
    CRkDaoRecordset rs(&db_);
    rs.Open(dbOpenDynaset, sql);
    rs.Query().Window(1, 2);
    EXPECT_EQ(Row(rs), "3|30|r3|0");
    Run("UPDATE T SET b = 0");  // the rest is noted
    rs.MoveNext();
    EXPECT_EQ(Row(rs), "4|40|r4|0");
    rs.MoveNext();
    EXPECT_TRUE(rs.IsEOF());
  }
}

TEST_F(RecordsetTest, AddEditDeleteAndTheirMisuse) {
  CRkDaoRecordset rs(&db_);
  rs.Open(dbOpenDynaset, "SELECT * FROM T");
  rs.AddNew();
  rs.SetFieldValue("id", std::uint32_t{0xFFFFFFFF});
  rs.SetFieldValue("name", "여섯");
  rs.SetFieldValue("b", BYTE{200});
  rs.Update();
  EXPECT_EQ(Rows("SELECT * FROM T WHERE id = -1"), Lines{"-1|-|여섯|200"});

  rs.AddNew();
  rs.SetFieldValue("id", std::uint32_t{1});
  EXPECT_EQ(NumberOf([&] { rs.Update(); }), 3022);
  EXPECT_EQ(NumberOf([&] { rs.SetFieldValue("b", COleVariant("x")); }), 3421);
  rs.SetFieldValue("id", std::uint32_t{7});
  rs.SetFieldValue("name", "toolong");
  EXPECT_EQ(NumberOf([&] { rs.Update(); }), 3163);
  rs.CancelUpdate();

  EXPECT_EQ(NumberOf([&] { rs.Update(); }), 3020);
  EXPECT_EQ(NumberOf([&] { rs.GetFieldValue("nowhere"); }), 3265);
  EXPECT_EQ(NumberOf([&] { rs.Open(dbOpenDynaset, "SELECT * FROM T"); }), 3219);
  rs.MoveFirst();
  rs.Delete();
  EXPECT_EQ(NumberOf([&] { rs.GetFieldValue("id"); }), 3167);
  EXPECT_EQ(Rows("SELECT COUNT(*) FROM T"), Lines{"5"});

  CRkDaoRecordset fixed(&db_);
  fixed.Open(dbOpenDynaset, "SELECT DISTINCT name FROM T");
  EXPECT_EQ(NumberOf([&] { fixed.Edit(); }), 3027);
  fixed.Close();
  EXPECT_EQ(NumberOf([&] { fixed.IsEOF(); }), 3420);
  db_.Close();
  EXPECT_EQ(NumberOf([&] {
              rs.IsEOF();
              rs.MoveFirst();
            }),
            3420);
}

TEST_F(RecordsetTest, TheSameQueryNestsInItself) {
  CRkDaoRecordset outer(&db_);
  int pairs = 0;
  for (outer.Open(dbOpenDynaset, "SELECT id FROM T WHERE id > 3"); !outer.IsEOF();
       outer.MoveNext()) {
    CRkDaoRecordset inner(&db_);
    for (inner.Open(dbOpenDynaset, "SELECT id FROM T WHERE id > 1"); !inner.IsEOF();
         inner.MoveNext()) {
      ++pairs;
    }
  }
  EXPECT_EQ(pairs, 2 * 4);
}

}  // namespace
