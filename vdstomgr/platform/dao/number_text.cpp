#include "vdstomgr/platform/dao/number_text.h"

#include <charconv>
#include <cmath>

namespace vdstomgr::dao {
namespace {

std::string_view Trim(std::string_view text) {
  constexpr std::string_view kBlank = " \t\r\n";
  const size_t first = text.find_first_not_of(kBlank);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

template <class Number>
std::optional<Number> Parse(std::string_view text) {
  text = Trim(text);
  if (text.starts_with('+')) text.remove_prefix(1);
  Number value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) return {};
  return value;
}

}  // namespace

std::optional<double> ParseNumber(std::string_view text) {
  const auto value = Parse<double>(text);
  if (value && !std::isfinite(*value)) return {};
  return value;
}

std::optional<std::int64_t> ParseInteger(std::string_view text) {
  return Parse<std::int64_t>(text);
}

std::optional<std::int64_t> RoundToInteger(double value) {
  constexpr double kLimit = 9223372036854775808.0;  // 2^63
  const double rounded = std::nearbyint(value);     // the default rounding mode: halves to even
  if (!(rounded >= -kLimit && rounded < kLimit)) return {};
  return static_cast<std::int64_t>(rounded);
}

}  // namespace vdstomgr::dao
