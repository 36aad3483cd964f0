#include <gtest/gtest.h>

#include <string>

#include "tests/dao/jet_schema.h"

namespace {

using vdstomgr::dao::ColumnType;
using vdstomgr::sqlite::ReadDeclaredType;

TEST(JetPrinter, StatementsInTheEnginesDialect) {
  const struct {
    const char* sql;
    const char* printed;  // "~" stands for the name of the text order
  } kCases[] = {
      // a column keeps its index: no other order is named beside it
      {"SELECT DISTINCT s FROM T WHERE id = (SELECT id FROM U) AND s = (SELECT MAX(s) FROM U)",
       R"(SELECT DISTINCT "s" FROM "T" WHERE "id" = (SELECT jet_single("c1") FROM )"
       R"((SELECT "id" AS "c1" FROM "U")) AND "s" = (SELECT MAX("s") COLLATE ~ AS "Expr1000" FROM "U"))"},
      {"SELECT 1 FROM T WHERE s & 'x' = (SELECT s FROM I) OR MAX(s) IN ('a', s)",
       R"(SELECT ?1 AS "Expr1000" FROM "T" WHERE ("s" || ?2 COLLATE ~) COLLATE ~ = )"
       R"((SELECT jet_single("c1") FROM (SELECT "s" AS "c1" FROM "I")) OR )"
       R"(MAX("s") COLLATE ~ IN (?3, "s"))"},
      // beside a whole key other columns tell no groups apart; no row lacks a key
      {"SELECT a.s, COUNT(b.s) AS n FROM T AS a INNER JOIN I AS b ON a.s = b.s GROUP BY a.id, a.s, "
       "b.s",
       R"(SELECT "a"."s", COUNT(*) AS "n" FROM "T" AS "a" JOIN "I" AS "b" NOT INDEXED ON "a"."s" = )"
       R"("b"."s" GROUP BY "a"."id", "b"."s")"},
      {"SELECT s, COUNT(d) FROM T GROUP BY s, d",
       R"(SELECT "s", COUNT("d") AS "Expr1000" FROM "T" GROUP BY "s", "d")"},
      {"SELECT COUNT(a.id), COUNT(b.id), COUNT(c.id) FROM (T AS a LEFT JOIN U AS b ON a.s = b.s) "
       "RIGHT JOIN U AS c ON a.s = c.s",
       R"(SELECT COUNT("a"."id") AS "Expr1000", COUNT("b"."id") AS "Expr1001", COUNT(*) AS "Expr1002" )"
       R"(FROM ("T" AS "a" LEFT JOIN "U" AS "b" ON "a"."s" = "b"."s") RIGHT JOIN "U" AS "c" )"
       R"(ON "a"."s" = "c"."s")"},
      // a narrow index can be read for what is left out
      {"DELETE FROM T AS a WHERE b NOT IN (SELECT id FROM U)",
       R"(DELETE FROM "T" WHERE rowid IN (SELECT "a".rowid FROM "T" AS "a" WHERE "b" NOT IN )"
       R"((SELECT "id" FROM "U")))"},
      // a list of keys leads
      {"SELECT a.* FROM T AS a INNER JOIN I AS b ON a.s = b.s",
       R"(SELECT "a".* FROM "T" AS "a" JOIN "I" AS "b" NOT INDEXED ON "a"."s" = "b"."s")"},
      {"SELECT a.* FROM T AS a INNER JOIN I AS b ON a.s = b.s WHERE a.id = 1",
       R"(SELECT "a".* FROM "T" AS "a" JOIN "I" AS "b" ON "a"."s" = "b"."s" WHERE "a"."id" = ?1)"},
  };
  for (const auto& c : kCases) {
    std::string expected = c.printed;
    for (size_t at; (at = expected.find('~')) != std::string::npos;) {
      expected.replace(at, 1, "vdsto_text_1");
    }
    EXPECT_EQ(Translate(c.sql).sql, expected);
  }
}

TEST(JetPrinter, OnlyPlainRowsAreEditable) {
  for (const char* sql :
       {"SELECT * FROM t", "SELECT a.id, s AS S FROM T a WHERE id IN (SELECT id FROM U)",
        "SELECT TOP 1 * FROM T", "SELECT * FROM T ORDER BY s DESC"}) {
    EXPECT_EQ(Translate(sql).editable_table, "T") << sql;
  }
  for (const char* sql :
       {"SELECT DISTINCT s FROM T", "SELECT COUNT(*) FROM T", "SELECT s AS n FROM T",
        "SELECT s FROM T GROUP BY s", "SELECT * FROM T, U", "SELECT 1",
        "SELECT * FROM (SELECT * FROM T)", "SELECT TOP 1 * FROM T ORDER BY s",
        "SELECT s FROM T UNION SELECT s FROM U", "DELETE FROM T"}) {
    EXPECT_EQ(Translate(sql).editable_table, "") << sql;
  }
}

TEST(JetPrinter, DeclaredTypesAreReadBack) {
  const struct {
    const char* type;
    ColumnType read;
    int size = 0;
  } kCases[] = {
      {"BYTE", ColumnType::Byte},         {"INTEGER", ColumnType::Integer},
      {"long", ColumnType::Integer},      {"DOUBLE", ColumnType::Double},
      {"MEMO", ColumnType::LongText},     {"TEXT", ColumnType::LongText},
      {"TEXT(7)", ColumnType::Text, 7},   {"CHAR(36)", ColumnType::Text, 36},
      {"VARCHAR", ColumnType::Text, 255}, {"COUNTER PRIMARY KEY", ColumnType::Counter},
  };
  for (const auto& c : kCases) {
    const std::string sql = Translate("CREATE TABLE A (x " + std::string(c.type) + ")").sql;
    const size_t begin = sql.find("\"x\" ") + 4;
    const size_t end =
        std::min({sql.find(" COLLATE"), sql.find(" CONSTRAINT"), sql.find(" PRIMARY")});
    const auto column = ReadDeclaredType("x", sql.substr(begin, end - begin));
    ASSERT_TRUE(column) << sql;
    EXPECT_EQ(column->type, c.read) << c.type;
    EXPECT_EQ(column->size, c.size) << c.type;
  }
  for (const char* other :
       {"", "BLOB", "CHAR", "CHAR()", "CHAR(x)", "CHAR(0)", "CHAR(5", "VARCHAR(-1)"}) {
    EXPECT_FALSE(ReadDeclaredType("x", other)) << other;
  }
}

TEST(JetPrinter, WhatTheDialectDoesNotKnowIsRefused) {
  const struct {
    int error;
    std::vector<const char*> statements;
  } kCases[] = {
      {3075,  // expression
       {"SELECT",
        "SELECT FROM T",
        "SELECT id FROM T WHERE",
        "SELECT id FROM T WHERE id IN ()",
        "SELECT id FROM T WHERE id = ",
        "SELECT id FROM T WHERE (id = 1",
        "SELECT id FROM T WHERE id == 1",
        "SELECT id FROM T WHERE id NOT 1",
        "SELECT id FROM T WHERE id BETWEEN 1",
        "SELECT select FROM T",
        "SELECT TOP x id FROM T",
        "SELECT TOP -1 id FROM T",
        "SELECT TOP '3' id FROM T",
        "SELECT id FROM T ORDER BY 1",
        "SELECT s FROM T GROUP BY 's'",
        "SELECT id FROM T WHERE id IS 1",
        "SELECT COUNT(DISTINCT id) FROM T",
        "SELECT MAX(*) FROM T",
        "SELECT id FROM T WHERE id = (SELECT id, b FROM U)",
        "SELECT id FROM T WHERE id IN (SELECT * FROM U)",
        "SELECT TOP 1 s FROM T UNION SELECT s FROM U",
        "SELECT id AS FROM T",
        "SELECT T.1 FROM T",
        "SELECT id FROM T ORDER BY",
        "SELECT [] FROM T"}},
      {3131,
       {"SELECT * FROM", "SELECT * FROM T INNER U ON 1 = 1", "SELECT * FROM T INNER JOIN U",
        "SELECT * FROM (T", "SELECT * FROM T,", "DELETE T", "DELETE T.* FROM", "DELETE FROM T, U",
        "SELECT * FROM 'T'", "SELECT * FROM ()"}},
      {3134,
       {"INSERT T VALUES (1)", "INSERT INTO T", "INSERT INTO T (id) VALUES",
        "INSERT INTO T () VALUES (1)", "INSERT INTO T (id) VALUES (1",
        "INSERT INTO T (id,) VALUES (1)", "INSERT INTO T.id VALUES (1)"}},
      {3144,
       {"UPDATE T", "UPDATE T SET", "UPDATE T SET id", "UPDATE SET id = 1",
        "UPDATE T SET U.id = 1"}},
      {3290,
       {"CREATE TABLE", "CREATE TABLE A", "CREATE TABLE A (x INT",
        "CREATE TABLE A (x INT, PRIMARY KEY(y))",
        "CREATE TABLE A (x INT, CONSTRAINT c FOREIGN KEY (x))"}},
      {3291, {"CREATE INDEX ON T (id)", "CREATE INDEX i ON T", "CREATE UNIQUE INDEX i T (id)"}},
      {3292,
       {"CREATE TABLE A ()", "CREATE TABLE A (x)", "CREATE TABLE A (x BLOB)",
        "CREATE TABLE A (x CHAR(0))", "CREATE TABLE A (x CHAR(256))",
        "CREATE TABLE A (x CHAR('3'))", "CREATE TABLE A (x INT, X BYTE)",
        "CREATE TABLE A (x COUNTER)", "CREATE TABLE A (x COUNTER(5,1) PRIMARY KEY)",
        "CREATE TABLE A (x INT PRIMARY KEY, y INT PRIMARY KEY)", "CREATE TABLE A (x INT NOT)",
        "CREATE TABLE A (rowid INT)", "CREATE TABLE A (x INT CONSTRAINT c)"}},
      {3129,
       {"", ";", "PRAGMA x", "EXPLAIN SELECT 1", "WITH a AS (SELECT 1) SELECT 1", "BEGIN", "x",
        "CREATE VIEW v AS SELECT 1", "DROP x", "'SELECT 1'"}},
      {3142,
       {"SELECT 1; SELECT 2", "DELETE FROM T x y", "SELECT 1;;", "UPDATE T SET id = 1 2",
        "DROP TABLE T T"}},
      {3078,
       {"SELECT * FROM X", "DELETE FROM X", "UPDATE X SET a = 1", "DELETE x.* FROM T, U",
        "SELECT * FROM sqlite_schema", "CREATE INDEX i ON X (a)", "SELECT id FROM T, X"}},
      {3192, {"INSERT INTO X VALUES (1)"}},
      {3376, {"DROP TABLE X", "DROP INDEX i ON X", "DROP TABLE sqlite_sequence"}},
      {3127, {"INSERT INTO I (x) VALUES (1)", "INSERT INTO I SELECT id FROM T"}},
      {3063, {"INSERT INTO T (id, ID) VALUES (1, 2)", "UPDATE T SET id = 1, id = 2"}},
      {3346,
       {"INSERT INTO T VALUES (1)", "INSERT INTO I (s) VALUES (1, 2)",
        "INSERT INTO I SELECT * FROM T", "INSERT INTO I (s) SELECT s, s FROM T"}},
      {3061, {"UPDATE T SET x = 1", "SELECT rowid FROM T", "DELETE FROM T WHERE T.[_ROWID_] = 1"}},
      {3073, {"DELETE a.* FROM (SELECT * FROM T) AS a, U", "DELETE FROM (SELECT * FROM T)"}},
      {3085, {"SELECT Len(s) FROM T", "DELETE FROM T WHERE load_extension('x')"}},
      {3349, {"SELECT 1e999"}},
  };
  for (const auto& c : kCases) {
    for (const char* sql : c.statements) EXPECT_EQ(TranslationError(sql), c.error) << sql;
  }
}

TEST(JetPrinter, ErrorsShowThePlaceWithoutTheValues) {
  try {
    Translate("SELECT id FROM T WHERE s LIKE AND = 'x' OR 가가가가가가가가가가가가가가가가");
    FAIL();
  } catch (const CDaoException& error) {
    EXPECT_STREQ(error.what(), "Syntax error in query expression 'AND = ? OR 가가가가가가가가가'.");
  }
}

}  // namespace
