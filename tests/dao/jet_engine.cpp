#include <string>

#include "tests/dao/database_fixture.h"

namespace {

// What statements mean once the engine runs their translation.
class JetEngineTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    Run("CREATE TABLE T (id INTEGER PRIMARY KEY, g INTEGER, s VARCHAR(20))");
    Run("CREATE TABLE K (s CHAR(20) PRIMARY KEY)");
    const char* const rows[] = {"1, 1, 'a'", "2, 1, 'B'", "3, 2, 'b'", "4, 2, 'c[1]'",
                                "5, NULL, NULL"};
    for (const char* row : rows) Run(std::string("INSERT INTO T VALUES (") + row + ")");
    Run("CREATE INDEX i ON T (s)");
    Run("CREATE INDEX i ON K (s)");  // index names are per table
  }
};

TEST_F(JetEngineTest, Expressions) {
  const struct {
    const char* expression;
    const char* value;
  } kCases[] = {
      {"2 + 3 * 4", "14"},
      {"(2 + 3) * 4", "20"},
      {"10 - 3 - 2", "5"},
      {"10 - (3 - 2)", "9"},
      {"2 * 3 MOD 4", "2"},
      {"1 + 7 MOD 4", "4"},
      {"19 MOD 6.7", "5"},
      {"-7 MOD 4", "-3"},
      {"17 \\ 3 * 2", "2"},
      {"100 \\ 7 MOD 5", "4"},
      {"7 / 2", "3.5"},
      {"12 / 2 / 3", "2"},
      {"-2 ^ 2", "-4"},
      {"2 ^ -1", "0.5"},
      {"2 ^ 3 ^ 2", "64"},
      {"2 - -3", "5"},
      {"- - 3", "3"},
      {"1 + 2 & 3 + 4", "37"},
      {"'a' & \"b''\" & 'c'''", "ab''c'"},
      {"0xFF + 1", "256"},
      {"NULL + 1", "-"},
      {"(SELECT MAX(s) FROM T)", "c[1]"},
      {"(SELECT id FROM T WHERE id = 99)", "-"},
      {"(SELECT TOP 1 id FROM T ORDER BY id DESC)", "5"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(Rows(std::string("SELECT ") + c.expression), Lines{c.value}) << c.expression;
  }
}

TEST_F(JetEngineTest, Conditions) {
  const struct {
    const char* condition;
    const char* ids;
  } kCases[] = {
      {"s = 'b' OR s = 'A' AND g = 2", "23"},
      {"NOT s = 'b' AND g = 1", "1"},
      {"NOT (s = 'b' OR g = 1)", "4"},
      {"s & 'x' = 'BX'", "23"},
      {"'BX' = s & 'x'", "23"},
      {"s & 'x' IN ('AX', 'CX')", "1"},
      {"'b' IN (SELECT s FROM T WHERE id = 2) AND id = 1", "1"},
      {"(SELECT MIN(s) FROM T) = (SELECT 'A' FROM T WHERE id = 1) AND id < 2", "1"},
      {"s BETWEEN 'B' AND 'C'", "23"},
      {"s NOT BETWEEN 'B' AND 'C'", "14"},
      {"g IN (1, 2) AND id NOT IN (SELECT id FROM T WHERE s = 'b')", "14"},
      {"s IS NULL", "5"},
      {"NOT s IS NOT NULL", "5"},
      {"s LIKE '*[[]#]'", "4"},
      {"s NOT LIKE '?' AND s <> 'x'", "4"},
      {"s LIKE 'B' & ''", "23"},
      {"id > -1 AND id <= 2 AND g <> 7", "12"},
      {"EXISTS (SELECT * FROM T AS u WHERE u.g = T.g AND u.id < T.id)", "24"},
      {"id = (SELECT MAX(u.id) FROM T AS u WHERE u.g = T.g)", "24"},
      {"id = (SELECT u.id FROM T AS u WHERE u.g = T.g AND u.s LIKE 'B')", "23"},
  };
  for (const auto& c : kCases) {
    Lines expected;
    for (const char* id = c.ids; *id; ++id) expected.push_back(std::string(1, *id));
    EXPECT_EQ(Rows(std::string("SELECT id FROM T WHERE ") + c.condition + " ORDER BY id"), expected)
        << c.condition;
  }
}

TEST_F(JetEngineTest, Queries) {
  const struct {
    const char* sql;
    Lines rows;
  } kCases[] = {
      {"SELECT TOP 2 id FROM T ORDER BY g DESC", {"3", "4"}},
      {"SELECT TOP 1 g, id FROM T WHERE g > 0 ORDER BY g", {"1|1", "1|2"}},  // with ties
      {"SELECT TOP 2 s FROM T WHERE g > 0 ORDER BY s", {"a", "B", "b"}},
      {"SELECT DISTINCT TOP 2 s FROM T WHERE g > 0 ORDER BY s", {"a", "B"}},
      {"SELECT TOP 1 g, COUNT(*) AS n FROM T GROUP BY g ORDER BY COUNT(*), g", {"-|1"}},
      {"SELECT TOP 0 id FROM T", {}},
      {"SELECT COUNT(*) as Count FROM T GROUP BY s ORDER BY s DESC", {"1", "2", "1", "1"}},
      {"SELECT MAX(s), MIN(id), SUM(g), COUNT(g) FROM T", {"c[1]|1|6|4"}},
      {"SELECT g FROM T GROUP BY g HAVING COUNT(*) > 1 ORDER BY g", {"1", "2"}},
      {"SELECT DISTINCT x.m FROM (SELECT MAX(s) AS m FROM T GROUP BY id) AS x WHERE x.m = 'b'",
       {"B"}},
      {"SELECT s FROM T WHERE id < 3 UNION SELECT s FROM T WHERE id < 4 ORDER BY s", {"a", "B"}},
      {"SELECT a.id, b.id FROM T AS a INNER JOIN T AS b ON a.s = b.s AND a.id < b.id", {"2|3"}},
      {"SELECT b.id FROM T a RIGHT JOIN T b ON a.id = b.id + 1 WHERE a.id IS NULL", {"5"}},
      {"SELECT x.Expr1000 FROM (SELECT COUNT(*) FROM T, K) x", {"0"}},
      {"SELECT x.[a.id] FROM (SELECT a.*, b.* FROM T a, T b WHERE b.id = 2) x WHERE x.[b.id] > 1 "
       "AND x.[a.id] = 1",
       {"1"}},
      {"SELECT a.g, a.s, COUNT(b.id) as n FROM T as a INNER JOIN T as b ON a.g = b.g GROUP BY a.g, "
       "a.s ORDER BY a.s",
       {"1|a|2", "1|B|2", "2|b|2", "2|c[1]|2"}},
      {"SELECT top 1 b.id as other, a.* FROM T as a INNER JOIN T as b ON a.s = b.s WHERE b.id = 3",
       {"3|2|1|B"}},
      {"SELECT id FROM T WHERE (s LIKE '*[[[]]1[[[]]]*' OR (s LIKE '*C*' AND s LIKE '*[[]1*'))",
       {"4"}},
      {"SELECT b.id FROM (SELECT * FROM T WHERE g IN (1) ORDER BY s DESC) as b ORDER BY b.id",
       {"1", "2"}},
  };
  for (const auto& c : kCases) EXPECT_EQ(Rows(c.sql), c.rows) << c.sql;
  EXPECT_EQ(NumberOf([&] { Rows("SELECT id FROM T WHERE id = (SELECT id FROM T)"); }), 3354);
  EXPECT_EQ(NumberOf([&] { Rows("SELECT (SELECT TOP 1 id FROM T ORDER BY g DESC) FROM T"); }),
            3354);
}

TEST_F(JetEngineTest, Actions) {
  EXPECT_EQ(Run("Insert into K select s from T where g = 2"), 2);
  EXPECT_EQ(Run("delete a.* from K as a LEFT OUTER JOIN T as b ON a.s = b.s AND b.id > 3 where b.s "
                "IS NULL"),
            1);
  EXPECT_EQ(Rows("SELECT * FROM K"), Lines{"c[1]"});
  EXPECT_EQ(Run("INSERT INTO T (id, g) SELECT id + 10, '7.5' FROM T WHERE s = 'b'"), 2);
  EXPECT_EQ(Rows("SELECT id, g FROM T WHERE id > 10"), (Lines{"12|8", "13|8"}));
  EXPECT_EQ(Run("UPDATE T SET g = (g + -6) MOD 4, s = 'x' WHERE id > 10"), 2);
  EXPECT_EQ(
      Run("DELETE FROM T WHERE g = (select a.g From (select distinct g from T) as a Left Outer "
          "Join T as b On a.g = b.id WHERE b.id is NULL AND a.g is not null)"),
      0);
  EXPECT_EQ(Rows("SELECT DISTINCT g FROM T ORDER BY g"), (Lines{"-", "1", "2"}));
  std::string chain = "DELETE FROM T WHERE id = 1";
  for (int i = 20; i < 20000; ++i) chain += " OR id = " + std::to_string(i);
  EXPECT_EQ(Run(chain), 1);
}

}  // namespace
