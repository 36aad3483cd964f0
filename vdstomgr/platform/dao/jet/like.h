#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vdstomgr/platform/dao/jet/grams.h"

namespace vdstomgr::jet {

/// A pattern of the dialect's LIKE: `*` any text, `?` one character, `#` one digit, `[list]` and
/// `[!list]` one character (not) in the list, in which `a-z` is a range and the first `]` closes.
/// Letters match without regard to case; `%`, `_`, and `!` and `]` outside a list are themselves.
class LikePattern {
 public:
  /// Reads a pattern (UTF-8). Throws InvalidPattern for a list that is not closed or a range that
  /// runs backwards.
  explicit LikePattern(std::string_view pattern);

  /// Does the whole of `text` (UTF-8) match? Takes time proportional to the lengths of text and
  /// pattern multiplied at worst, whatever the pattern.
  bool Matches(std::string_view text) const;

  /// Is every text that it matches surely matched by `other`? False when that cannot be told.
  bool Implies(const LikePattern& other) const;

  /// Pieces that every text it matches has, at most `most` of them, spread over the pattern; none
  /// when nothing can be said. Either all or none are starts of pieces.
  std::vector<Gram> RequiredGrams(std::size_t most) const;

 private:
  struct Range {
    char32_t first, last;  // folded

    bool operator==(const Range&) const = default;
  };
  struct Element {
    enum class Kind : unsigned char { AnyText, AnyCharacter, Digit, Character, In, NotIn };
    Kind kind;
    char32_t character = 0;          // Character: folded
    std::vector<Range> ranges = {};  // In, NotIn

    bool operator==(const Element&) const = default;
  };

  /// What a gram can be made of: an element that stands for one character, or for characters of
  /// one initial.
  struct GramPart {
    std::optional<char32_t> character, initial;
  };

  static bool MatchesOne(const Element& element, char32_t folded);
  static GramPart PartOf(const Element& element);
  bool MatchesElements(std::string_view text) const;
  bool IsPartOfText() const;
  void AddList(std::string_view list);
  void FindPart();

  std::vector<Element> elements_;
  /// Of "*text*" that can be looked for byte by byte: the text, folded; otherwise empty.
  std::string part_;
  enum class PartIn { ThisForm, AnyCase, AsciiInAnyCase } part_in_ = PartIn::ThisForm;
};

/// The same for a pattern that is used once.
inline bool Like(std::string_view text, std::string_view pattern) {
  return LikePattern(pattern).Matches(text);
}

}  // namespace vdstomgr::jet
