#include "tools/vdsto/picture/exif_text.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace vdsto {
namespace {

/// The columns of the photo record are this wide; a number that does not fit is no camera's
/// setting.
constexpr size_t kWidth = 8;

std::string Decimal(double value, int digits) {
  std::array<char, 64> buffer{};
  if (!std::isfinite(value) || std::fabs(value) >= 1e8) return {};
  std::snprintf(buffer.data(), buffer.size(), "%.*f", digits, value);
  std::string text = buffer.data();
  if (digits > 0) text.erase(text.find_last_not_of('0') + 1);
  if (text.ends_with('.')) text.pop_back();
  if (text == "-0") text = "0";
  return text.size() <= kWidth ? text : std::string();
}

}  // namespace

std::string ExposureText(Fraction seconds) {
  if (!seconds.IsKnown() || seconds.Value() <= 0) return {};
  const double value = seconds.Value();
  const double parts = std::round(1 / value);
  const bool exact = std::fabs(value * parts - 1) < 0.01;
  if (value >= 1 || (value >= 0.25 && !exact)) return Decimal(value, 1);
  const std::string denominator = Decimal(parts, 0);
  return denominator.empty() || denominator.size() + 2 > kWidth ? std::string()
                                                                : "1/" + denominator;
}

std::string FNumberText(Fraction f_number) {
  return f_number.IsKnown() && f_number.Value() > 0 ? Decimal(f_number.Value(), 1) : std::string();
}

std::string ExposureBiasText(Fraction bias) {
  return bias.IsKnown() ? Decimal(bias.Value(), 2) : std::string();
}

}  // namespace vdsto
