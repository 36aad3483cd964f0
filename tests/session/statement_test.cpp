#include "vdstomgr/session/statement.h"

#include <gtest/gtest.h>

#include <vector>

#include "vdstomgr/records/image_names.h"

namespace vdstomgr {
namespace {

TEST(Statement, TextsAreQuotedByDoublingQuotesOnly) {
  const struct {
    const char *text, *quoted;
  } kCases[] = {{"", ""}, {"it's", "it''s"}, {"''", "''''"}, {"%d\\\"\n", "%d\\\"\n"}, {"'", "''"}};
  for (const auto& c : kCases) {
    std::string statement;
    AppendQuoted(statement, c.text);
    EXPECT_EQ(statement, c.quoted);
  }
}

TEST(Statement, PlacesAreFilledInOrder) {
  std::string statement = "old";
  const CString name = "O'Neil %s";
  ComposeStatement(
      statement, "a = %d, b = '%s', c = '%s', d = %d, e = %s;",
      std::vector<SqlArgument>{0xFFFFFFFFu, name, static_cast<const char*>(nullptr),
                               std::uint8_t{200}, Raw("it's")});
  EXPECT_EQ(statement, "a = -1, b = 'O''Neil %s', c = '', d = 200, e = it's;");
}

TEST(Statement, AnItemStandsAtItsPlaces) {
  std::string statement;
  ComposeStatement(statement, "%s, '%s', %s", std::vector<SqlArgument>{kEachGuid, "x", kEachGuid},
                   Raw("g'"));
  EXPECT_EQ(statement, "g', 'x', g'");
}

TEST(Statement, ListsAreWithoutBlanks) {
  const auto text = [](Raw list) { return std::string(list.text); };
  EXPECT_EQ(text(IdList({})), "");
  EXPECT_EQ(text(IdList({7, 0xFFFFFFF6, 0})), "7,-10,0");
  EXPECT_EQ(text(GuidList({"a", "b'"})), "'a','b''");
}

TEST(ImageNames, AreToldByTheirExtension) {
  for (const char* name : {"a.JpG", "b.x.kdc", "c.tiff"})
    EXPECT_TRUE(IsImageFileName(name)) << name;
  for (const char* name : {"a.jfif", "jpg", "", "a.jpg.txt", static_cast<const char*>(nullptr)})
    EXPECT_FALSE(IsImageFileName(name));
  EXPECT_TRUE(IsPngFileName("x.PnG"));
  EXPECT_FALSE(IsPngFileName("x.jpg"));
}

}  // namespace
}  // namespace vdstomgr
