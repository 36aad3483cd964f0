#pragma once
#include <cstdint>
#include <string>

/// Times as the catalogue's records hold them: seconds since 1970, before and after. The file keeps
/// what the local clock showed, so that a photo of noon stays one of noon wherever it is looked at.
namespace vdsto {

/// What stands for "no time" in a row. The clock shows the same for it in every zone, which it does
/// not for 0.
int32_t NoTime();

/// False for NoTime and for 0.
bool IsTime(int32_t time);

/// The time at which the local clock shows "2004-06-29 15:29:33"; NoTime for an empty text and for
/// a moment that a row cannot hold, before December 1901 and after January 2038.
int32_t TimeOfClock(const std::string& clock);

}  // namespace vdsto
