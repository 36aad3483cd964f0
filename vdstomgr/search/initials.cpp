#include "vdstomgr/search/initials.h"

#include <algorithm>
#include <string>
#include <vector>

#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/platform/text/compose.h"
#include "vdstomgr/platform/text/hangul.h"
#include "vdstomgr/platform/text/utf8.h"

namespace vdstomgr {

namespace {

using Word = std::u32string;

/// The text composed, with two consonants that stand as one taken apart, as they are typed.
Word Typed(const char* text) {
  const std::string utf8 = ToUtf8(ViewOf(text));
  Word characters;
  for (std::string_view rest = utf8; !rest.empty();) {
    const DecodedCharacter character = DecodeUtf8(rest);
    characters += character.code;
    rest.remove_prefix(character.bytes);
  }
  Word typed;
  for (const char32_t c : ComposeHangul(characters)) {
    const std::u32string_view parts = PartsOf(c);
    parts.empty() ? typed += c : typed += parts;
  }
  return typed;
}

std::vector<Word> WordsOf(const Word& text) {
  std::vector<Word> words;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find_first_of(U" \t", at), text.size());
    if (end > at) words.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return words;
}

std::string Utf8Of(char32_t code) {
  std::string utf8;
  AppendCharacter(code, utf8);
  return utf8;
}

/// A pattern for the characters from the first to the last.
std::string Range(char32_t first, char32_t last) {
  return "[" + Utf8Of(first) + "-" + Utf8Of(last) + "]";
}

/// What a letter stands for: itself, and any syllable that begins with it.
std::string AnyWithInitial(char32_t letter) {
  const char32_t first = FirstSyllableOf(letter);
  return "[" + Utf8Of(letter) + Range(first, first + kSyllablesPerInitial - 1).substr(1);
}

std::string PatternOf(char32_t c) {
  if (FirstSyllableOf(c) != 0) return AnyWithInitial(c);
  if (c == U'\'') return "''";
  const bool has_meaning = c == U'[' || c == U'*' || c == U'?' || c == U'#';
  return has_meaning ? "[" + Utf8Of(c) + "]" : Utf8Of(c);
}

/// The last syllable without a vowel that goes on in another: "ㅗ" may become "ㅚ".
char32_t LastVowelFrom(char32_t vowel) {
  constexpr char32_t kO = 8, kU = 13, kEu = 18;
  return vowel == kO || vowel == kU ? vowel + 3 : vowel == kEu ? vowel + 1 : vowel;
}

/// What a syllable that is typed last can become.
std::vector<std::string> PatternsOfLast(char32_t c) {
  if (!IsSyllable(c)) return {PatternOf(c)};
  const char32_t final_place = (c - kFirstSyllable) % kSyllablesPerVowel;
  const char32_t open = c - final_place;
  if (final_place == 0) {
    const char32_t vowel = (c - kFirstSyllable) % kSyllablesPerInitial / kSyllablesPerVowel;
    const char32_t further = (LastVowelFrom(vowel) - vowel + 1) * kSyllablesPerVowel - 1;
    return {Range(c, c + further)};
  }
  const char32_t letter = FinalOf(c);
  const std::u32string_view parts = PartsOf(letter);
  if (!parts.empty()) {  // the first of the two remains
    char32_t syllable = open + 1;
    while (FinalOf(syllable) != parts[0]) ++syllable;
    return {Utf8Of(c), Utf8Of(syllable) + AnyWithInitial(parts[1])};
  }
  std::string same = Utf8Of(c);  // or two consonants of which this is the first
  for (char32_t other = c + 1; other < open + kSyllablesPerVowel; ++other)
    if (PartsOf(FinalOf(other)).starts_with(letter)) same += Utf8Of(other);
  return {"[" + same + "]", Utf8Of(open) + AnyWithInitial(letter)};
}

std::string Term(const std::string& column, const std::string& pattern) {
  return column + " LIKE '*" + pattern + "*'";
}

std::string Condition(const std::string& column, const Word& word, bool is_last) {
  std::string start;
  for (const char32_t c : word.substr(0, word.size() - 1)) start += PatternOf(c);
  const auto ends =
      is_last ? PatternsOfLast(word.back()) : std::vector<std::string>{PatternOf(word.back())};
  return Join(ends, " OR ", [&](const std::string& end) { return Term(column, start + end); });
}

}  // namespace

CString BuildInitialsQuery(const char* table, const char* column, const char* text) {
  const std::string name = ToUtf8(ViewOf(column));
  const std::vector<Word> words = WordsOf(Typed(text));
  std::string conditions = words.empty() ? Term(name, "") : "";
  for (const Word& word : words) {
    const bool is_last = &word == &words.back();
    conditions += (conditions.empty() ? "(" : " AND (") + Condition(name, word, is_last) + ")";
  }
  CString query;
  query.Format("SELECT * FROM %s WHERE (%s) ORDER BY %s", ViewOf(table).data(),
               FromUtf8(conditions).c_str(), ViewOf(column).data());
  return query;
}

bool IsInitials(const char* text) {
  const std::vector<Word> words = WordsOf(Typed(text));
  const auto is_made_of_them = [](const Word& word) {
    return std::ranges::all_of(word, IsConsonant);
  };
  return !words.empty() && std::ranges::all_of(words, is_made_of_them);
}

}  // namespace vdstomgr
