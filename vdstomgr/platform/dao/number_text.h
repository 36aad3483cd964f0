#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vdstomgr::dao {

/// A text that is a decimal number, white space around it allowed; nothing when it is none.
std::optional<double> ParseNumber(std::string_view text);

/// A text that is a whole decimal number within 64 bits; nothing when it is none.
std::optional<std::int64_t> ParseInteger(std::string_view text);

/// The nearest whole number, halves going to the even one, as the dialect rounds on assignment;
/// nothing when it does not fit 64 bits or is no number.
std::optional<std::int64_t> RoundToInteger(double value);

}  // namespace vdstomgr::dao
