#include "search_test.h"

namespace vdstomgr {
namespace {

TEST(QueryBuilder, WritesOneTermForTheTextAndOneForEachWord) {
  const std::pair<const char*, const char*> cases[] = {
      {"sea", "c LIKE '*sea*' OR (c LIKE '*sea*')"},
      {" \t big   sea\t ", "c LIKE '*big sea*' OR (c LIKE '*big*' AND c LIKE '*sea*')"},
      {"a\tb", "c LIKE '*a\tb*' OR (c LIKE '*a\tb*')"},
      {"", "c LIKE '**'"},
      {" \t ", "c LIKE '**'"},
      {nullptr, "c LIKE '**'"},
      {"it's", "c LIKE '*it''s*' OR (c LIKE '*it''s*')"},
      {"[", "c LIKE '*[[[]]*' OR (c LIKE '*[[[]]*')"},
      {"]", "c LIKE '*[]]*' OR (c LIKE '*[]]*')"},
      {"*#?\\", "c LIKE '*[*][#][?]\\\\*' OR (c LIKE '*[*][#][?]\\\\*')"},
      {"a - b", "c LIKE '*a - b*' OR (c LIKE '*a*' AND c LIKE '*-*' AND c LIKE '*b*')"},
  };
  for (const auto& [text, where] : cases)
    EXPECT_EQ(BuildSearchQuery("t", "c", text),
              CString("SELECT * FROM t WHERE (") + where + ") ORDER BY c");
}

TEST(QueryBuilder, SplitsAtSeparators) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""}, {" ", ""}, {"a", "a"}, {"  a b   c ", "a,b,c"}};
  for (const auto& [text, parts] : cases) {
    CStringArray words{"before"};
    SplitStringBySpace(text, ' ', words);
    EXPECT_EQ(Listed(words), parts);
  }
}

}  // namespace
}  // namespace vdstomgr
