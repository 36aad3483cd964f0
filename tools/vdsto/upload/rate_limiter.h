#pragma once
#include <chrono>
#include <cstdint>
#include <mutex>

namespace vdsto {

/// Shares a number of bytes a second out among all threads that send.
class RateLimiter {
 public:
  /// 0: as fast as it goes.
  explicit RateLimiter(uint64_t bytes_per_second) : rate_(bytes_per_second) {}

  /// At most how many bytes to send at once, so that waits are short.
  size_t Portion(size_t wanted) const;
  /// Waits until `bytes` more may be sent, or the user wants to stop. Any thread.
  void Wait(size_t bytes);

 private:
  using Clock = std::chrono::steady_clock;

  const uint64_t rate_;
  std::mutex mutex_;
  Clock::time_point free_at_{};  // guarded by mutex_
};

/// Sleeps for that long, or until the user wants to stop: false then.
bool SleepUnlessInterrupted(std::chrono::nanoseconds time);

}  // namespace vdsto
