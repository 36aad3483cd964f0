#include "vdstomgr/platform/os/tick_count.h"

#include <chrono>

DWORD GetTickCount() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<DWORD>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}
