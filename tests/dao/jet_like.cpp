#include <gtest/gtest.h>

#include <chrono>
#include <sstream>
#include <string>

#include "vdstomgr/platform/dao/dao_exception.h"
#include "vdstomgr/platform/dao/jet/like.h"

namespace {

using vdstomgr::jet::Like;

TEST(JetLike, Patterns) {
  const struct {
    const char* pattern;
    const char* matches;  // texts separated by blanks; "_" is the empty text
    const char* others;
  } kCases[] = {
      {"", "_", "a"},
      {"*", "_ a 가나다", ""},
      {"**a**", "a bab", "b _"},
      {"a?c", "abc A가C a😀c", "ac abbc"},
      {"?", "가 a \xFF", "_ 가나"},
      {"a#", "a0 A9", "aa a a12 a٣"},
      {"*가*", "가 나가다", "나 _"},
      {"*sK*", "xSkx sk ſK 가Ska", "s ks _ 가"},
      {"*i가*", "I가 xi가x", "i 가 가i"},
      {"ÀÉ*", "àéx ÀÉ", "ae"},
      {"straße", "STRAßE Straẞe", "strasse"},
      {"*aab", "aaab AAAAAB aab", "aaba ab"},
      {"*a*b*", "ab xaxbx", "ba a"},
      {"[abc]x", "ax Bx", "dx x abcx"},
      {"[!abc]x", "dx 가x", "ax Ax x"},
      {"[a-c]", "a B c", "d - aa"},
      {"[a-c0-9가-나]", "a 5 각 나", "d 다"},
      {"[-a]", "- a", "b"},
      {"[a-]", "- a", "b"},
      {"[!-a]", "b", "- a"},
      {"[!]", "!", "a _"},
      {"[a!]", "a !", "b"},
      {"a!]%_", "a!]%_", "a!]xx"},
      {"[*][?][#]", "*?#", "abc"},
      {"[[]", "[", "] [] _"},
      {"[[]]", "[]", "[ ]"},
      {"[[[]]", "[]", "[ [[]"},
      {"*[[[]]]*", "a[]]b", "[ []"},
      {"[]", "_", "] a"},
      {"[]]", "]", "_ []"},
      {"a[]b", "ab", "a]b"},
      {"*\\\\*", "a\\\\b", "a\\b"},
  };
  const auto each = [](const char* list, auto check) {
    std::istringstream words(list);
    for (std::string word; words >> word;) check(word == "_" ? "" : word);
  };
  for (const auto& c : kCases) {
    each(c.matches, [&](const auto& text) {
      EXPECT_TRUE(Like(text, c.pattern)) << text << " LIKE " << c.pattern;
    });
    each(c.others, [&](const auto& text) {
      EXPECT_FALSE(Like(text, c.pattern)) << text << " LIKE " << c.pattern;
    });
  }
  for (const char* pattern : {"[", "abc[", "x[abc", "[b-a]", "*[!"}) {
    EXPECT_THROW(Like("y", pattern), CDaoException) << pattern;
  }
}

TEST(JetLike, ManyStarsTakeNoExponentialTime) {
  std::string pattern;
  for (int i = 0; i < 200; ++i) pattern += "*a";
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(Like(std::string(20000, 'a'), pattern + "b"));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
