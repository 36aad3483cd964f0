#include "tools/vdsto/picture/memory_budget.h"

#include <algorithm>

namespace vdsto {

MemoryBudget::Share::Share(MemoryBudget& budget, uint64_t bytes)
    : budget_(budget), bytes_(std::min(bytes, budget.total_)) {
  std::unique_lock lock(budget_.mutex_);
  budget_.released_.wait(lock, [&] { return budget_.free_ >= bytes_; });
  budget_.free_ -= bytes_;
}

MemoryBudget::Share::~Share() {
  {
    const std::lock_guard lock(budget_.mutex_);
    budget_.free_ += bytes_;
  }
  budget_.released_.notify_all();
}

}  // namespace vdsto
