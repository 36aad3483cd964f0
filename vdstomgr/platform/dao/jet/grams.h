#pragma once

#include <string>
#include <string_view>

#include "vdstomgr/platform/text/ascii.h"
#include "vdstomgr/platform/text/case_folding.h"
#include "vdstomgr/platform/text/hangul.h"
#include "vdstomgr/platform/text/utf8.h"

namespace vdstomgr::jet {

/// The pieces of texts by which an index finds the few that a LIKE can match:
///   - every character that is no ASCII, and an ASCII one at the end;
///   - every two neighbours, and where both are ASCII the one behind them with them;
///   - every two neighbours that are no ASCII with the head of the text, its first character,
///   behind
///     them, so that an index can be asked for those of the texts that begin alike;
///   - every two neighbours' initials, where one is a Hangul consonant.
/// Characters are folded as LIKE folds them. Any change of the pieces needs a new name.
inline constexpr const char* kGramsName = "vdsto_grams_2";

/// A piece that all texts matched by a pattern have.
struct Gram {
  std::string term;
  bool is_start = false;  ///< any piece that begins with the term will do
  bool has_head = false;  ///< there are pieces of the term and a text's head, too

  bool operator==(const Gram&) const = default;
};

/// Bytes that are no character stand above the last one, in order.
inline constexpr char32_t kFirstInvalid = 0x110000;

/// Takes the character at `at`, folded. A byte that is no character is one of its own.
inline char32_t TakeFolded(std::string_view text, std::size_t& at) {
  const auto byte = static_cast<unsigned char>(text[at]);
  if (byte < 0x80) {
    ++at;
    return static_cast<unsigned char>(LowerAscii(text[at - 1]));
  }
  const DecodedCharacter character = DecodeUtf8(text.substr(at));
  at += character.bytes;
  return character.code == kInvalidCharacter ? kFirstInvalid + byte : FoldCase(character.code);
}

/// The head of a text. Texts lie in the text order by their heads first.
inline char32_t HeadOf(std::string_view text) {
  std::size_t at = 0;
  return text.empty() ? 0 : TakeFolded(text, at);
}

/// The first text of the text order that has a head.
std::string FirstTextOf(char32_t head);

/// A head such that none lies between `head` and it.
char32_t HeadAfter(char32_t head);

/// A piece as the index has it.
class GramTerm {
 public:
  GramTerm& Single(char32_t character);
  GramTerm& Pair(char32_t first, char32_t second);
  GramTerm& Triple(char32_t first, char32_t second, char32_t third);
  GramTerm& Initials(char32_t first, char32_t second);
  /// The same with a text's head behind it.
  GramTerm& Under(char32_t head);

  std::string_view View() const { return {bytes_, size_}; }

 private:
  void Put(char32_t character);

  char bytes_[12];
  std::size_t size_ = 0;
};

constexpr bool IsAsciiCharacter(char32_t character) {
  return character < 0x80;
}

/// Is this pair a piece with the head of its text, too?
constexpr bool HasHead(char32_t first, char32_t second) {
  return !IsAsciiCharacter(first) && !IsAsciiCharacter(second);
}

/// Calls `take(term)` for every piece of a text (UTF-8), some of them more than once, up to the
/// first that it answers false to.
template <class Take>
void ForEachGram(std::string_view text, Take take) {
  constexpr char32_t kNone = 0xFFFFFFFF;
  char32_t before = kNone, last = kNone;
  const char32_t head = HeadOf(text);
  GramTerm term;
  for (std::size_t at = 0; at < text.size();) {
    const char32_t character = TakeFolded(text, at);
    const bool is_ascii = IsAsciiCharacter(character), ends = at == text.size();
    if ((!is_ascii || ends) && !take(term.Single(character).View())) return;
    if (last != kNone) {
      if (IsAsciiCharacter(before) && IsAsciiCharacter(last) &&
          !take(term.Triple(before, last, character).View()))
        return;
      const bool is_triple = is_ascii && IsAsciiCharacter(last) && !ends;
      if (!is_triple && !take(term.Pair(last, character).View())) return;
      if (HasHead(last, character) && !take(term.Under(head).View())) return;
      const char32_t initials[] = {InitialOf(last), InitialOf(character)};
      if ((IsConsonant(initials[0]) || IsConsonant(initials[1])) &&
          !take(term.Initials(initials[0], initials[1]).View()))
        return;
    }
    before = last;
    last = character;
  }
}

}  // namespace vdstomgr::jet
