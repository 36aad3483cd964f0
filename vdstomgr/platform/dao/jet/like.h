#pragma once

#include <string_view>
#include <vector>

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

 private:
  struct Range {
    char32_t first, last;  // folded
  };
  struct Element {
    enum class Kind : unsigned char { AnyText, AnyCharacter, Digit, Character, In, NotIn };
    Kind kind;
    char32_t character = 0;          // Character: folded
    std::vector<Range> ranges = {};  // In, NotIn
  };

  static bool MatchesOne(const Element& element, char32_t folded);
  void AddList(std::string_view list);

  std::vector<Element> elements_;
};

/// The same for a pattern that is used once.
inline bool Like(std::string_view text, std::string_view pattern) {
  return LikePattern(pattern).Matches(text);
}

}  // namespace vdstomgr::jet
