#include "vdstomgr/platform/os/local_time.h"

#include <array>
#include <atomic>
#include <limits>

#include "vdstomgr/platform/os/time_zone.h"

namespace vdstomgr::os {
namespace {

constexpr std::int64_t kDay = 86400;
constexpr std::int64_t kNoDay = std::numeric_limits<std::int64_t>::min();

std::atomic<std::uint32_t> zone_generation{0};

/// The zone's offsets well before and well after a day, in seconds east of UTC. When they are the
/// same, they hold all day, in UTC and on any wall clock.
struct DayOffsets {
  std::int64_t day = kNoDay;
  std::int64_t before = 0;
  std::int64_t after = 0;

  bool IsConstant() const { return before == after; }
};

/// Asking the system costs more than all the rest of a conversion, and the dates of a collection
/// crowd on few days: remembers some days' offsets for about a second.
class OffsetCache {
 public:
  const DayOffsets& Find(std::int64_t seconds) {
    ForgetWhenOld();
    const std::int64_t day = seconds / kDay - (seconds % kDay < 0 ? 1 : 0);
    DayOffsets& entry = days_[static_cast<std::size_t>(day) % days_.size()];
    if (entry.day != day) {
      entry = {day, ZoneOffsetAt((day - 1) * kDay), ZoneOffsetAt((day + 2) * kDay)};
    }
    return entry;
  }

 private:
  void ForgetWhenOld() {
    const std::int64_t second = CoarseSeconds();
    const std::uint32_t generation = zone_generation.load(std::memory_order_relaxed);
    if (second == second_ && generation == generation_) return;
    ReloadTimeZone();
    days_.fill({});
    second_ = second;
    generation_ = generation;
  }

  std::array<DayOffsets, 512> days_;
  std::int64_t second_ = -1;
  std::uint32_t generation_ = 0;
};

OffsetCache& Offsets() {
  thread_local OffsetCache cache;
  return cache;
}

}  // namespace

std::int64_t WallClockOf(std::int64_t seconds) {
  const DayOffsets& day = Offsets().Find(seconds);
  return seconds + (day.IsConstant() ? day.before : ZoneOffsetAt(seconds));
}

std::int64_t SecondsOf(std::int64_t wall_clock) {
  const DayOffsets& day = Offsets().Find(wall_clock);
  const std::int64_t earlier = wall_clock - day.before;
  if (day.IsConstant() || ZoneOffsetAt(earlier) == day.before) return earlier;
  const std::int64_t later = wall_clock - day.after;
  return ZoneOffsetAt(later) == day.after ? later : earlier;
}

void ForgetTimeZone() {
  ++zone_generation;
}

}  // namespace vdstomgr::os
