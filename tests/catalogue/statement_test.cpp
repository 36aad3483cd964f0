#include "vdstomgr/catalogue/statement.h"

#include <gtest/gtest.h>

#include <vector>

#include "vdstomgr/catalogue/image_names.h"

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
  ComposeStatement(statement, "a = %d, b = '%s', c = '%s', d = %d;",
                   std::vector<SqlArgument>{0xFFFFFFFFu, Quoted(name),
                                            static_cast<const char*>(nullptr), std::uint8_t{200}});
  EXPECT_EQ(statement, "a = -1, b = 'O''Neil %s', c = '', d = 200;");
}

TEST(Statement, IdListsAreSignedAndWithoutBlanks) {
  EXPECT_EQ(IdList({}), "");
  EXPECT_EQ(IdList(std::vector<std::uint32_t>{7, 0xFFFFFFF6, 0}), "7,-10,0");
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
