#pragma once

#include <cstdint>

/// Between seconds since 1970-01-01 UTC and the wall clock of the system's time zone. The wall
/// clock is given as the seconds since 1970 that it would show in UTC. A change of the zone (TZ or
/// the system's setting) is noticed within a second.
namespace vdstomgr::os {

std::int64_t WallClockOf(std::int64_t seconds);

/// A time that the clocks show twice is the earlier one; one that they skip counts on from before
/// the gap, so that 02:30 becomes 03:30.
std::int64_t SecondsOf(std::int64_t wall_clock);

/// Makes a change of the zone known at once.
void ForgetTimeZone();

}  // namespace vdstomgr::os
