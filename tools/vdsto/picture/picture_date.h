#pragma once
#include <string>
#include <string_view>

namespace vdsto {

/// The moment that a program wrote as "2004:06:29 15:29:33", "2004-06-29T15:29+09:00" or "2004-06":
/// what the clock at the place showed, as "2004-06-29 15:29:33". Parts that are missing at the end
/// are the first of their kind; fractions of seconds and zones are left out. Empty for what is
/// blank or zero, for no day of the calendar, and for midnight of 1970-01-01, which a clock shows
/// that was never set.
std::string DateFrom(std::string_view text);

}  // namespace vdsto
