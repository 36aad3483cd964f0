#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/dao/jet_schema.h"

namespace {

std::string Repeat(std::string_view piece, int times) {
  std::string repeated;
  for (int i = 0; i < times; ++i) repeated += piece;
  return repeated;
}

TEST(JetHostile, DeepNestingIsRefused) {
  constexpr int kDeep = 100000;
  for (const std::string& expression :
       {Repeat("(", kDeep) + "1" + Repeat(")", kDeep), Repeat("NOT ", kDeep) + "1",
        Repeat("- ", kDeep) + "1", Repeat("(SELECT ", kDeep), Repeat("id IN (", kDeep),
        Repeat("COUNT(", kDeep), Repeat("2 ^ - ", kDeep) + "1", "1" + Repeat(" + 1", kDeep),
        "s" + Repeat(" & s", kDeep), "2" + Repeat(" ^ 2", kDeep)}) {
    EXPECT_EQ(TranslationError("SELECT id FROM T WHERE " + expression), 3075)
        << expression.substr(0, 20);
  }
  EXPECT_EQ(TranslationError("SELECT id FROM " + Repeat("(", kDeep)), 3131);
  EXPECT_EQ(TranslationError("SELECT " + Repeat("*,", kDeep) + "* FROM T"), 3075);
  EXPECT_EQ(TranslationError("SELECT id FROM T WHERE id = 1" + Repeat(" AND id = 1", kDeep)), 0);
}

// Statements with random bytes changed, removed, doubled or exchanged are translated or refused.
TEST(JetHostile, MutatedStatementsNeverCrash) {
  const std::vector<std::string> seeds = {
      "SELECT TOP 3 a.s, b.*, COUNT(*) as n FROM (T a INNER JOIN I ON a.s = I.s) LEFT JOIN (SELECT "
      "* FROM U) AS b"
      " ON a.id = b.id WHERE a.s LIKE '*x[[]*' AND NOT b.d BETWEEN -1.5 AND 2e3 GROUP BY a.s "
      "HAVING MAX(b) > 0xFF"
      " ORDER BY a.s DESC, n",
      "INSERT INTO T (id, b, s) SELECT id, '7' & s, (SELECT s FROM I) FROM U UNION ALL SELECT 1, "
      "2, \"q\"\"\"",
      "UPDATE T SET b = (b + -90) MOD 4 \\ 2 ^ -1, s = 'it''s' WHERE id IN (1, -2) OR s IS NOT "
      "NULL",
      "CREATE TABLE A (x CHAR(36) NOT NULL, n COUNTER(1,1) PRIMARY KEY, CONSTRAINT c UNIQUE (x, "
      "n))",
      "DELETE a.* FROM I AS a, [T] WHERE EXISTS (SELECT * FROM U WHERE U.s = a.s);"};
  std::mt19937 random(20240229);
  const auto pick = [&](size_t bound) { return static_cast<size_t>(random() % bound); };
  const std::string alphabet = "()'\"[]*,.;=<>-+^&\\ \t09eExX\x01\x02\x03\x80\xEA%#";
  int accepted = 0;
  for (int round = 0; round < 20000; ++round) {
    std::string sql = seeds[pick(seeds.size())];
    for (size_t changes = pick(4); changes > 0; --changes) {
      const size_t at = pick(sql.size());
      switch (pick(4)) {
        case 0:
          sql[at] = alphabet[pick(alphabet.size())];
          break;
        case 1:
          sql.erase(at, pick(8));
          break;
        case 2:
          sql.insert(at, sql, pick(sql.size()), pick(20));
          break;
        default:
          sql.insert(at, 1, static_cast<char>(random()));
          break;
      }
      if (sql.empty()) sql = " ";
    }
    accepted += TranslationError(sql) == 0;
    try {  // the parser by itself takes any bytes
      vdstomgr::jet::Parse(sql, {});
    } catch (const CDaoException&) {
    }
  }
  EXPECT_GT(accepted, 4000);  // unchanged ones, and changes inside literals and names
  EXPECT_LT(accepted, 16000);
}

}  // namespace
