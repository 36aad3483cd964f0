#include <algorithm>
#include <utility>

#include "vdstomgr/platform/dao/jet/like.h"

namespace vdstomgr::jet {
namespace {

// The engine's index is asked with texts that end at a 0.
bool CanBeAskedFor(const std::string& term) {
  return term.find('\0') == std::string::npos;
}

}  // namespace

LikePattern::GramPart LikePattern::PartOf(const Element& element) {
  if (element.kind == Element::Kind::Character) {
    return {element.character, InitialOf(element.character)};
  }
  if (element.kind != Element::Kind::In) return {};
  const char32_t some = element.ranges.front().first;
  const char32_t initial = InitialOf(some);
  const auto is_some = [&](const Range& r) { return r.first == some && r.last == some; };
  // Between two syllables of one initial there are no others.
  const auto has_initial = [&](const Range& r) {
    const bool is_one = r.first == r.last || (IsSyllable(r.first) && IsSyllable(r.last));
    return is_one && InitialOf(r.first) == initial && InitialOf(r.last) == initial;
  };
  GramPart part;
  if (std::ranges::all_of(element.ranges, is_some)) part.character = some;
  if (std::ranges::all_of(element.ranges, has_initial)) part.initial = initial;
  return part;
}

// Two ASCII characters, or one, are looked for as starts of longer pieces: only when there is
// nothing else, because that is slow.
std::vector<Gram> LikePattern::RequiredGrams(std::size_t most) const {
  std::vector<GramPart> parts(elements_.size() + 2);
  std::transform(elements_.begin(), elements_.end(), parts.begin(), PartOf);
  std::vector<Gram> grams, starts;
  const auto add = [&](const GramTerm& term, bool is_start = false, bool has_head = false) {
    Gram gram{std::string(term.View()), is_start, has_head};
    if (CanBeAskedFor(gram.term)) (is_start ? starts : grams).push_back(std::move(gram));
  };
  bool is_paired = false;  // with the part before
  for (std::size_t i = 0; i < elements_.size(); ++i) {
    const auto& [one, one_initial] = parts[i];
    const auto& [two, two_initial] = parts[i + 1];
    const std::optional<char32_t> three = parts[i + 2].character;
    const bool was_paired = std::exchange(is_paired, true);
    if (one && two && IsAsciiCharacter(*one) && IsAsciiCharacter(*two)) {
      three ? add(GramTerm().Triple(*one, *two, *three)) : add(GramTerm().Pair(*one, *two), true);
    } else if (one && two) {
      add(GramTerm().Pair(*one, *two), false, HasHead(*one, *two));
    } else if (one_initial && two_initial &&
               (IsConsonant(*one_initial) || IsConsonant(*two_initial))) {
      add(GramTerm().Initials(*one_initial, *two_initial));
    } else {
      is_paired = false;
      if (one && !was_paired) add(GramTerm().Single(*one), IsAsciiCharacter(*one));
    }
  }
  if (grams.empty()) grams = std::move(starts);
  if (grams.size() <= most) return grams;
  std::vector<Gram> spread;
  for (std::size_t i = 0; i < most; ++i)
    spread.push_back(std::move(grams[i * grams.size() / most]));
  return spread;
}

}  // namespace vdstomgr::jet
