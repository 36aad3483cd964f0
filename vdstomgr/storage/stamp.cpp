#include "vdstomgr/storage/stamp.h"

#include <atomic>

namespace vdstomgr {

void StampSource::TakeLot() {
  constexpr DWORD kLot = 1024;
  static std::atomic<DWORD> lots{0};
  next_ = lots.fetch_add(1, std::memory_order_relaxed) * kLot + 1;
  left_ = kLot - 1;
}

}  // namespace vdstomgr
