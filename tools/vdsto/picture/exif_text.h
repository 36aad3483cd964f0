#pragma once
#include <cstdint>
#include <string>

namespace vdsto {

/// A fraction as cameras store them; a denominator of 0 means "not known".
struct Fraction {
  int64_t numerator = 0;
  int64_t denominator = 0;

  bool IsKnown() const { return denominator != 0; }
  double Value() const { return static_cast<double>(numerator) / static_cast<double>(denominator); }
};

/// Seconds: "1/125" below a quarter of a second or where it is exact, else "0.4", "1.3", "30".
/// Empty when not known.
std::string ExposureText(Fraction seconds);

/// "2.8", "11". Empty when not known.
std::string FNumberText(Fraction f_number);

/// "-0.67", "0", "1". Empty when not known.
std::string ExposureBiasText(Fraction bias);

}  // namespace vdsto
