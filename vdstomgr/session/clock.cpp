#include "vdstomgr/session/clock.h"

#include <ctime>

#include "vdstomgr/platform/os/tick_count.h"
#include "vdstomgr/platform/utility/utility_lib.h"

namespace vdstomgr {

Clock::Clock() {
  Set(static_cast<std::int32_t>(std::time(nullptr)));
}

void Clock::Set(std::int32_t time) {
  base_ = std::uint64_t{static_cast<std::uint32_t>(time)} << 32 | GetTickCount();
}

std::int32_t Clock::Now() const {
  const std::uint64_t base = base_;
  const std::uint32_t elapsed = GetTickCount() - static_cast<std::uint32_t>(base);
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(base >> 32) + elapsed / 1000);
}

CString Clock::NowText() const {
  return CUtilityLib::ConvertTimeForDB(Now());
}

}  // namespace vdstomgr
