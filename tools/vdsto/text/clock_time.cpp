#include "tools/vdsto/text/clock_time.h"

#include "vdstomgr/vdstomgr.h"

namespace vdsto {

int32_t NoTime() {
  return CUtilityLib::GetTime("1970-01-01 00:00:00");
}

bool IsTime(int32_t time) {
  return time != 0 && time != NoTime();
}

int32_t TimeOfClock(const std::string& clock) {
  const int32_t time = CUtilityLib::GetTime(clock.c_str());
  if (time == -1) return NoTime();
  return time == 0 ? 1 : time;  // a real moment, by a second
}

}  // namespace vdsto
