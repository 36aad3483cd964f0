#pragma once

#include <cstdint>

/// What local_time asks of each system.
namespace vdstomgr::os {

/// Seconds that the wall clock is ahead of UTC at a time in seconds since 1970-01-01 UTC; 0 for a
/// time the system does not know.
std::int64_t ZoneOffsetAt(std::int64_t seconds);

/// Makes a change of the zone known to this thread's next ZoneOffsetAt.
void ReloadTimeZone();

/// Seconds of a clock that is never set back and costs next to nothing to read.
std::int64_t CoarseSeconds();

}  // namespace vdstomgr::os
