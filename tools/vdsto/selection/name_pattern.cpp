#include "tools/vdsto/selection/name_pattern.h"

#include <algorithm>
#include <optional>

#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

/// What one place of a pattern wants of one character, and how long the place is.
struct Place {
  bool matches;
  size_t length;
};

/// A set "[...]" at the front of `pattern`; none when it is not closed, so that "[" means itself.
std::optional<Place> MatchSet(std::u32string_view pattern, char32_t character) {
  size_t at = 1;
  const bool negated = at < pattern.size() && (pattern[at] == '!' || pattern[at] == '^');
  if (negated) ++at;
  bool found = false;
  for (const size_t first = at; at < pattern.size(); ++at) {
    if (pattern[at] == ']' && at > first) return Place{found != negated, at + 1};
    const bool is_range =
        at + 2 < pattern.size() && pattern[at + 1] == '-' && pattern[at + 2] != ']';
    const char32_t low = pattern[at];
    if (is_range) at += 2;
    found = found || (low <= character && character <= pattern[at]);
  }
  return std::nullopt;
}

Place MatchOne(std::u32string_view pattern, char32_t character) {
  if (pattern.front() == '?') return {true, 1};
  if (pattern.front() == '[') {
    if (const auto set = MatchSet(pattern, character)) return *set;
  }
  if (pattern.front() == '\\' && pattern.size() > 1) return {pattern[1] == character, 2};
  return {pattern.front() == character, 1};
}

/// After a mismatch only the last * needs to take one character more.
bool Matches(std::u32string_view pattern, std::u32string_view name) {
  std::optional<std::u32string_view> after_star;
  std::u32string_view retry;
  while (!name.empty() || !pattern.empty()) {
    if (pattern.starts_with('*')) {
      pattern.remove_prefix(1);
      after_star = pattern;
      retry = name;
      continue;
    }
    const Place place =
        pattern.empty() || name.empty() ? Place{false, 0} : MatchOne(pattern, name.front());
    if (place.matches) {
      pattern.remove_prefix(place.length);
      name.remove_prefix(1);
    } else {
      if (!after_star || retry.empty()) return false;
      retry.remove_prefix(1);
      name = retry;
      pattern = *after_star;
    }
  }
  return true;
}

}  // namespace

bool IsPattern(std::string_view text) {
  return text.find_first_of("*?[") != std::string_view::npos;
}

bool MatchesPattern(std::string_view pattern, std::string_view name) {
  return Matches(CodePoints(pattern), CodePoints(name));
}

}  // namespace vdsto
