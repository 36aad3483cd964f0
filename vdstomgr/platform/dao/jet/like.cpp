#include "vdstomgr/platform/dao/jet/like.h"

#include <algorithm>
#include <span>

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/text/ascii.h"
#include "vdstomgr/platform/text/utf8.h"

namespace vdstomgr::jet {
namespace {

constexpr bool IsLetter(char32_t folded) {
  return folded >= 'a' && folded <= 'z';
}

/// Is an ASCII character, or one that no other folds to? Texts of such characters can be looked for
/// byte by byte, if the case of ASCII letters is disregarded; two of these have a third form.
bool IsFoundByBytes(char32_t folded) {
  const bool is_jamo = folded >= 0x3131 && folded <= 0x318E;
  const bool is_han = folded >= 0x4E00 && folded <= 0x9FFF;
  return folded < 0x80 || IsSyllable(folded) || is_jamo || is_han;
}

bool HoldsIgnoringCase(std::string_view text, std::string_view folded_part) {
  if (text.size() < folded_part.size()) return false;
  const char* const last = text.data() + (text.size() - folded_part.size());
  const auto same = [](char a, char folded) { return LowerAscii(a) == folded; };
  for (const char* at = text.data(); at <= last; ++at) {
    if (same(*at, folded_part.front()) &&
        std::equal(folded_part.begin() + 1, folded_part.end(), at + 1,
                   [&](char folded, char a) { return same(a, folded); })) {
      return true;
    }
  }
  return false;
}

}  // namespace

LikePattern::LikePattern(std::string_view pattern) {
  using Kind = Element::Kind;
  elements_.reserve(pattern.size());
  for (size_t at = 0; at < pattern.size();) {
    const char first = pattern[at];
    if (first == '[') {
      const size_t closing = pattern.find(']', at);
      if (closing == std::string_view::npos) dao::Throw(dao::Error::InvalidPattern);
      AddList(pattern.substr(at + 1, closing - at - 1));
      at = closing + 1;
      continue;
    }
    const char32_t folded = TakeFolded(pattern, at);
    if (first == '*') {
      const bool repeated = !elements_.empty() && elements_.back().kind == Kind::AnyText;
      if (!repeated) elements_.push_back({Kind::AnyText});
    } else if (first == '?') {
      elements_.push_back({Kind::AnyCharacter});
    } else if (first == '#') {
      elements_.push_back({Kind::Digit});
    } else {
      elements_.push_back({Kind::Character, folded});
    }
  }
  FindPart();
}

// Is it "*...*"?
bool LikePattern::IsPartOfText() const {
  return elements_.size() >= 3 && elements_.front().kind == Element::Kind::AnyText &&
         elements_.back().kind == Element::Kind::AnyText;
}

bool LikePattern::Implies(const LikePattern& other) const {
  if (!IsPartOfText() || !other.IsPartOfText()) return false;
  const auto part = std::span(other.elements_).subspan(1, other.elements_.size() - 2);
  return std::search(elements_.begin(), elements_.end(), part.begin(), part.end()) !=
         elements_.end();
}

void LikePattern::FindPart() {
  if (!IsPartOfText()) return;
  const size_t count = elements_.size();
  std::string part;
  bool has_letters = false, has_third_forms = false;
  for (size_t i = 1; i + 1 < count; ++i) {
    const std::optional<char32_t> character = PartOf(elements_[i]).character;
    if (!character || !IsFoundByBytes(*character)) return;
    has_letters = has_letters || IsLetter(*character);
    has_third_forms = has_third_forms || *character == 'k' || *character == 's';
    AppendCharacter(*character, part);
  }
  part_ = std::move(part);
  part_in_ = has_third_forms ? PartIn::AsciiInAnyCase
             : has_letters   ? PartIn::AnyCase
                             : PartIn::ThisForm;
}

// An empty list matches nothing but the empty text between two characters, so it adds no element;
// "!" alone in a list is itself.
void LikePattern::AddList(std::string_view list) {
  if (list.empty()) return;
  const bool negated = list.size() > 1 && list.front() == '!';
  Element element{negated ? Element::Kind::NotIn : Element::Kind::In};
  for (size_t at = negated ? 1 : 0; at < list.size();) {
    const char32_t first = TakeFolded(list, at);
    char32_t last = first;
    if (at + 1 < list.size() && list[at] == '-') {
      ++at;
      last = TakeFolded(list, at);
      if (last < first) dao::Throw(dao::Error::InvalidPattern);
    }
    element.ranges.push_back({first, last});
  }
  elements_.push_back(std::move(element));
}

bool LikePattern::MatchesOne(const Element& element, char32_t folded) {
  const auto holds = [&](const Range& r) { return folded >= r.first && folded <= r.last; };
  switch (element.kind) {
    case Element::Kind::Character:
      return folded == element.character;
    case Element::Kind::Digit:
      return folded >= U'0' && folded <= U'9';
    case Element::Kind::In:
      return std::any_of(element.ranges.begin(), element.ranges.end(), holds);
    case Element::Kind::NotIn:
      return std::none_of(element.ranges.begin(), element.ranges.end(), holds);
    default:
      return true;
  }
}

bool LikePattern::Matches(std::string_view text) const {
  if (part_.empty()) return MatchesElements(text);
  if (part_in_ == PartIn::ThisForm) return text.find(part_) != std::string_view::npos;
  if (part_in_ == PartIn::AsciiInAnyCase && CountAsciiPrefix(text) < text.size()) {
    return MatchesElements(text);
  }
  return HoldsIgnoringCase(text, part_);
}

// On a mismatch only the last '*' has to take one character more: what an earlier one could take in
// addition, the last can take as well.
bool LikePattern::MatchesElements(std::string_view text) const {
  const size_t count = elements_.size();
  size_t element = 0;
  size_t behind_star = 0;  // the element behind the last '*'; 0 when there was none
  size_t star_end = 0;     // where the text behind that '*' is tried to begin
  for (size_t at = 0; at < text.size();) {
    if (element < count && elements_[element].kind == Element::Kind::AnyText) {
      behind_star = ++element;
      star_end = at;
    }
    if (behind_star == count && count > 0) return true;
    size_t next = at;
    const char32_t folded = TakeFolded(text, next);
    if (element < count && MatchesOne(elements_[element], folded)) {
      ++element;
      at = next;
    } else if (behind_star > 0) {
      if (element == behind_star) {
        star_end = next;
      } else {
        TakeFolded(text, star_end);
      }
      at = star_end;
      element = behind_star;
    } else {
      return false;
    }
  }
  if (element < count && elements_[element].kind == Element::Kind::AnyText) ++element;
  return element == count;
}

}  // namespace vdstomgr::jet
