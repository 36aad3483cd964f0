#include "vdstomgr/platform/os/time_zone.h"

#include <time.h>

namespace vdstomgr::os {

std::int64_t ZoneOffsetAt(std::int64_t seconds) {
  const time_t instant = seconds;
  tm local{};
  return localtime_r(&instant, &local) != nullptr ? local.tm_gmtoff : 0;
}

void ReloadTimeZone() {
  tzset();
}

std::int64_t CoarseSeconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  return now.tv_sec;
}

}  // namespace vdstomgr::os
