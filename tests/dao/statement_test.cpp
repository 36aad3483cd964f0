#include "tests/dao/database_fixture.h"

namespace {

class StatementTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    Run("CREATE TABLE T (id INTEGER PRIMARY KEY, name VARCHAR(5), b BYTE, note MEMO, d DOUBLE)");
    Run("CREATE TABLE U (id INTEGER PRIMARY KEY, name VARCHAR(5))");
  }
};

TEST_F(StatementTest, ColumnsKeepTheirTypes) {
  const struct {
    const char* values;
    int error;
    const char* row;  // what is stored
  } kCases[] = {
      {"1, 'abc', 7, '007', 1.5", 0, "1|abc|7|007|1.5"},
      {"1, '가나다라마', 255, '', 2", 0, "1|가나다라마|255||2"},
      {"1, 'sixsix', 0, '', 0", 3163, nullptr},
      {"1, '가나다라마바', 0, '', 0", 3163, nullptr},
      {"1, 'a', 256, '', 0", 3349, nullptr},
      {"1, 'a', -1, '', 0", 3349, nullptr},
      {"1, 'a', '12', '', '2.5'", 0, "1|a|12||2.5"},
      {"1, 'a', '2.5', '', 0", 0, "1|a|2||0"},
      {"1, 'a', '3.5', '', 0", 0, "1|a|4||0"},
      {"1, 'a', 'x', '', 0", 3421, nullptr},
      {"2147483648, 'a', 0, '', 0", 3349, nullptr},
      {"-2147483648, 12, 0xFF, '1e3', 0", 0, "-2147483648|12|255|1e3|0"},
      {"NULL, 'a', 0, '', 0", 3058, nullptr},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.values);
    Run("DELETE FROM T");
    EXPECT_EQ(ErrorOf(std::string("INSERT INTO T VALUES (") + c.values + ")"), c.error);
    EXPECT_EQ(Rows("SELECT * FROM T"), c.row ? Lines{c.row} : Lines{});
  }
}

TEST_F(StatementTest, TextIgnoresCaseEverywhere) {
  Run("INSERT INTO T (id, name) VALUES (1, 'abc')");
  Run("INSERT INTO T (id, name) VALUES (2, 'ABD')");
  Run("INSERT INTO T (id, name) VALUES (3, 'ÀB')");
  Run("CREATE UNIQUE INDEX I ON T (name)");
  EXPECT_EQ(ErrorOf("INSERT INTO T (id, name) VALUES (4, 'àb')"), 3022);
  EXPECT_EQ(Rows("SELECT id FROM T ORDER BY name"), (Lines{"1", "2", "3"}));
  EXPECT_EQ(Rows("SELECT id FROM T WHERE name = 'ABC'"), Lines{"1"});
  EXPECT_EQ(Rows("SELECT id FROM T WHERE name IN ('x', 'Abd')"), Lines{"2"});
  EXPECT_EQ(Rows("SELECT id FROM T WHERE name LIKE '*B[CD]'"), (Lines{"1", "2"}));
  EXPECT_EQ(Rows("SELECT id FROM T WHERE 'X' = 'x' AND name = 'aB'"), Lines{});
  EXPECT_EQ(Rows("SELECT id FROM T WHERE name = 'ab'"), Lines{});  // accents count
}

TEST_F(StatementTest, FailuresHaveTheDialectsNumbers) {
  const struct {
    const char* sql;
    int error;
  } kCases[] = {
      {"SELECT * FROM T", 3065},
      {"UPDATE Nowhere SET a = 1", 3078},
      {"DELETE FROM T WHERE nowhere = 1", 3061},
      {"UPDATE T SET name = nowhere + other WHERE id = 1", 3061},
      {"INSERT INTO T (id, nowhere) VALUES (1, 2)", 3127},
      {"INSERT INTO T (id) VALUES (1, 2)", 3346},
      {"INSERT INTO Nowhere (id) VALUES (1)", 3192},
      {"CREATE TABLE T (id INTEGER)", 3010},
      {"DROP TABLE Nowhere", 3376},
      {"DELETE FROM T WHERE id IN ()", 3075},
      {"DELETE FROM T; DELETE FROM U", 3142},
      {"PRAGMA user_version = 7", 3129},
      {"ATTACH 'x' AS y", 3129},
      {"DELETE FROM T WHERE id = (SELECT id FROM U)", 3354},
      {"UPDATE T SET b = id MOD 0 WHERE id = 1", 11},
  };
  Run("INSERT INTO T (id) VALUES (1)");
  Run("INSERT INTO U (id) VALUES (1)");
  Run("INSERT INTO U (id) VALUES (2)");
  for (const auto& c : kCases) {
    EXPECT_EQ(ErrorOf(c.sql), c.error) << c.sql;
  }
  EXPECT_EQ(Rows("SELECT COUNT(*) FROM T"), Lines{"1"});
  try {
    Run("DELETE FROM T WHERE x = y OR z = x");
    FAIL();
  } catch (const CDaoException& error) {
    EXPECT_STREQ(error.what(), "Too few parameters. Expected 3.");
  }
}

TEST_F(StatementTest, TwoWaysToRunAStatement) {
  for (const char* id : {"1", "2", "3"}) {
    Run(std::string("INSERT INTO U (id, name) VALUES (") + id + ", 'u')");
  }
  Run("INSERT INTO T (id, name) VALUES (2, 't')");

  EXPECT_EQ(ErrorOf("INSERT INTO T (id, name) SELECT id, name FROM U"), 3022);
  EXPECT_EQ(db_.GetRecordsAffected(), 0);
  EXPECT_EQ(Rows("SELECT id FROM T"), Lines{"2"});  // nothing of the failed statement remains

  db_.Execute("INSERT INTO T (id, name) SELECT id, name FROM U", 0);
  EXPECT_EQ(db_.GetRecordsAffected(), 2);
  EXPECT_EQ(Rows("SELECT id, name FROM T ORDER BY id"), (Lines{"1|u", "2|t", "3|u"}));

  db_.Execute("UPDATE T SET name = 'far too long' WHERE id = 1", 0);
  db_.Execute("not a statement", 0);
  EXPECT_EQ(Rows("SELECT name FROM T WHERE id = 1"), Lines{"u"});
}

TEST_F(StatementTest, OneShapeServesManyValues) {
  for (int i = 0; i < 2000; ++i) {
    Run("INSERT INTO T (id, name) VALUES (" + std::to_string(i) + ", '" + std::to_string(i) +
        "''')");
  }
  EXPECT_EQ(Rows("SELECT id, name FROM T WHERE name = '1234'''"), Lines{"1234|1234'"});
  // More literals than the engine takes as parameters.
  std::string list = "0";
  for (int i = 1; i < 40'000; ++i) list += "," + std::to_string(i);
  EXPECT_EQ(Rows("SELECT COUNT(*) FROM T WHERE id IN (" + list + ")"), Lines{"2000"});
  // Sizes are part of what a CREATE TABLE means.
  Run("CREATE TABLE A (t CHAR(2))");
  Run("CREATE TABLE B (t CHAR(3))");
  EXPECT_EQ(ErrorOf("INSERT INTO A VALUES ('abc')"), 3163);
  EXPECT_EQ(ErrorOf("INSERT INTO B VALUES ('abc')"), 0);
}

TEST_F(StatementTest, CountersAreNotReused) {
  Run("CREATE TABLE C (n COUNTER(1,1) PRIMARY KEY, t MEMO)");
  Run("INSERT INTO C (t) VALUES ('a')");
  Run("INSERT INTO C (t) VALUES ('b')");
  Run("DELETE FROM C WHERE n = 2");
  Run("INSERT INTO C (t) VALUES ('c')");
  EXPECT_EQ(Rows("SELECT * FROM C"), (Lines{"1|a", "3|c"}));
}

}  // namespace
