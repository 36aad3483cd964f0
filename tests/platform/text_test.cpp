#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/text/case_folding.h"
#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/platform/text/utf8.h"

namespace vdstomgr {
namespace {

using namespace std::string_view_literals;

/// Puts the code page back, which is the whole process's.
struct ScopedCodePage {
  explicit ScopedCodePage(TextCodePage code_page) { SetTextCodePage(code_page); }
  ~ScopedCodePage() { SetTextCodePage(TextCodePage::korean949); }
};

TEST(CodePage, ConvertsKoreanIn) {
  const struct {
    std::string_view korean, utf8;
  } kCases[] = {
      {"", ""},
      {"plain ASCII of some length|\x01\x7F"sv, "plain ASCII of some length|\x01\x7F"sv},
      {"a\0b"sv, "a\0b"sv},
      {"\xB0\xB3\xC0\xCE \xC6\xFA\xB4\xF5", "개인 폴더"},
      {"\x81\x41\xC6\x52\xC8\xFE\xFD\xFE"
       "A",
       "갂힣힝詰A"},                                  // the ends of the table's areas
      {"\xA2\xE6\xC9\xA1\xFE\xFE", "€\uE000\uE0BB"},  // a late addition; user-defined characters
      {"1234567\xB0\xA1", "1234567가"},               // the word-wise scan ends in mid-word
      {"x\xB0", "x\uFFFD"},                           // a lead byte without its second half
      {"\xB0(\xB0\xA1", "\uFFFD(가"},                 // the byte after it is not lost
      {"\x80\xFF\xC9\x41", "\uFFFD\uFFFD\uFFFD"},     // no lead bytes; an open place in the page
  };
  for (const auto& [korean, utf8] : kCases) EXPECT_EQ(ToUtf8(korean), utf8);
  std::string appended = "x";
  AppendUtf8("\xB0\xA1", appended);
  EXPECT_EQ(appended, "x가");
}

TEST(CodePage, ConvertsKoreanOut) {
  const std::pair<std::string_view, std::string_view> kCases[] = {
      {"휴지통.jpg", "\xC8\xDE\xC1\xF6\xC5\xEB.jpg"},
      {"À😀", "??"},                      // outside the code page, in and above the basic plane
      {"a\xEA\xB0z\xC0\x80", "a??z??"},  // cut short; overlong
      {"\uFFFD", "?"},
  };
  for (const auto& [utf8, korean] : kCases) EXPECT_EQ(FromUtf8(utf8), korean);
}

TEST(CodePage, Utf8PassesThroughAndIsRepaired) {
  const ScopedCodePage utf8(TextCodePage::utf8);
  const std::pair<std::string_view, std::string_view> kCases[] = {
      {"개인 폴더 À😀\u0000"sv, "개인 폴더 À😀\u0000"sv},
      {"a\x80z", "a\uFFFDz"},
      {"\xE0\x80\x80|\xC0\x80", "\uFFFD\uFFFD\uFFFD|\uFFFD\uFFFD"},  // overlong
      {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},                        // a surrogate
      {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},              // above U+10FFFF
      {"12345678\xEA\xB0", "12345678\uFFFD\uFFFD"},                  // cut short at the end
  };
  for (const auto& [in, out] : kCases) {
    EXPECT_EQ(ToUtf8(in), out);
    EXPECT_EQ(FromUtf8(in), out);
    EXPECT_EQ(IsValidUtf8(in), in == out);
  }
  EXPECT_EQ(CountCharacters("a가😀\xFF"), 4u);
}

TEST(CodePage, CutsBetweenCharacters) {
  const struct {
    TextCodePage code_page;
    std::string_view text;
    std::vector<std::size_t> cuts;  ///< the length left by a limit of 0, 1, 2 ...
  } kCases[] = {
      {TextCodePage::korean949, "a\xB0\xA1\xB0\xA1z", {0, 1, 1, 3, 3, 5, 6, 6}},
      {TextCodePage::korean949, "\xB0(\xB0", {0, 1, 2, 3}},
      {TextCodePage::utf8, "a가😀", {0, 1, 1, 1, 4, 4, 4, 4, 8, 8}},
      {TextCodePage::utf8, "\x80\x80\x80\xE0", {0, 1, 2, 3, 4}},
  };
  for (const auto& [code_page, text, cuts] : kCases) {
    const ScopedCodePage scope(code_page);
    for (std::size_t limit = 0; limit < cuts.size(); ++limit) {
      EXPECT_EQ(CutToBytes(text, limit), text.substr(0, cuts[limit])) << limit;
    }
  }
}

TEST(CodePage, CaseChangesLeaveSecondBytesAlone) {
  const CString text = "A\xB0\x41\x62";  // the second byte looks like 'A'
  EXPECT_EQ(CString(text).MakeLower(), "a\xB0\x41\x62");
  EXPECT_EQ(CString(text).MakeUpper(), "A\xB0\x41\x42");
  EXPECT_EQ(text.CompareNoCase("a\xB0\x41\x42"), 0);
  EXPECT_NE(text.CompareNoCase("a\xB0\x61\x42"), 0);
}

int Sign(int value) {
  return (value > 0) - (value < 0);
}

/// Folding is to lower case, so that what lies between the cases comes before both; it is simple,
/// so that no text changes its number of characters; and invalid bytes come after every character.
TEST(TextOrder, KnownTexts) {
  constexpr std::string_view kAscending[] = {
      "",           "12345678가", "12345678각", "[",    "_",        "a",       "a\0b"sv,
      "a\0C"sv,     "B",          "I",          "k",    "K1",       "\u212A2", "K3",
      "photo",      "Photo 1",    "ss",         "ß",    "À",        "Àb",      "àC",
      "İ",          "ı",          "가",         "가!",  "가나",     "각",      "\uFFFF",
      "\U00010000", "\U0010FFFF", "\x80",       "\x81", "\xEA\xB0", "\xFF"};
  for (std::size_t a = 0; a < std::size(kAscending); ++a) {
    for (std::size_t b = 0; b < std::size(kAscending); ++b) {
      EXPECT_EQ(Sign(CompareFolded(kAscending[a], kAscending[b])), (a > b) - (a < b))
          << kAscending[a] << " " << kAscending[b];
    }
  }
  constexpr std::pair<std::string_view, std::string_view> kSame[] = {
      {"IMG_0001.JPG", "img_0001.jpg"},
      {"ß", "ẞ"},
      {"ΟΔΟΣ", "οδος"},
      {"σ", "ς"},
      {"k", "\u212A"},
      {"𐐀", "𐐨"},
      {"Àí", "àÍ"}};
  for (const auto& [a, b] : kSame) EXPECT_EQ(CompareFolded(a, b), 0) << a;
}

/// The order in its plainest form, to hold the fast one against.
std::vector<char32_t> FoldedCharacters(std::string_view text) {
  std::vector<char32_t> folded;
  while (!text.empty()) {
    const auto [code, bytes] = DecodeUtf8(text);
    const char32_t invalid = 0x110000 + static_cast<unsigned char>(text.front());
    folded.push_back(code == kInvalidCharacter ? invalid : FoldCase(code));
    text.remove_prefix(bytes);
  }
  return folded;
}

TEST(TextOrder, AgreesWithThePlainOrderOnAnyBytes) {
  constexpr std::string_view kPieces[] = {"a", "A",    "k",    "\u212A", "가",   "각",       "\xEA",
                                          "z", "\xB0", "\x80", "\xF0",   "\xC3", "aAaAaAaA", "😀"};
  std::mt19937 random(20240229);
  std::vector<std::pair<std::string, std::vector<char32_t>>> texts;
  for (int i = 0; i < 500; ++i) {
    std::string text;
    for (auto n = random() % 7; n > 0; --n) text += kPieces[random() % std::size(kPieces)];
    texts.emplace_back(text, FoldedCharacters(text));
  }
  for (const auto& [a, folded_a] : texts) {
    for (const auto& [b, folded_b] : texts) {
      const int order = (folded_a > folded_b) - (folded_a < folded_b);
      ASSERT_EQ(Sign(CompareFolded(a, b)), order) << a << " " << b;
    }
  }
}

}  // namespace
}  // namespace vdstomgr
