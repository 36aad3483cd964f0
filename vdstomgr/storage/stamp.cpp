#include "vdstomgr/storage/stamp.h"

#include <atomic>

namespace vdstomgr {

DWORD NewStamp() {
  static std::atomic<DWORD> last{0};
  const DWORD stamp = last.fetch_add(1, std::memory_order_relaxed) + 1;
  return stamp != 0 ? stamp : NewStamp();
}

}  // namespace vdstomgr
