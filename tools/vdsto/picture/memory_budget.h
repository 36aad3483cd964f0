#pragma once
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace vdsto {

/// A number of bytes that threads share: who needs more than is free waits. A need above the whole
/// budget takes all of it, so that it runs alone.
class MemoryBudget {
 public:
  explicit MemoryBudget(uint64_t bytes) : total_(bytes), free_(bytes) {}

  class Share {
   public:
    Share(MemoryBudget& budget, uint64_t bytes);
    ~Share();
    Share(const Share&) = delete;
    Share& operator=(const Share&) = delete;

   private:
    MemoryBudget& budget_;
    uint64_t bytes_;
  };

 private:
  const uint64_t total_;
  std::mutex mutex_;
  std::condition_variable released_;
  uint64_t free_;  // guarded by mutex_
};

}  // namespace vdsto
