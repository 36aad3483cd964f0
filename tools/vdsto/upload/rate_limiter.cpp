#include "tools/vdsto/upload/rate_limiter.h"

#include <algorithm>
#include <thread>

#include "tools/vdsto/import/interruption.h"

namespace vdsto {
namespace {

constexpr std::chrono::milliseconds kLookUp{50};
constexpr uint64_t kPortionsASecond = 10;
constexpr size_t kLeastPortion = 1024;

}  // namespace

size_t RateLimiter::Portion(size_t wanted) const {
  if (rate_ == 0) return wanted;
  return std::min(wanted, std::max<size_t>(kLeastPortion, rate_ / kPortionsASecond));
}

void RateLimiter::Wait(size_t bytes) {
  if (rate_ == 0) return;
  const auto duration = std::chrono::nanoseconds(bytes * 1'000'000'000ull / rate_);
  std::chrono::nanoseconds wait;
  {
    const std::lock_guard lock(mutex_);
    const auto now = Clock::now();
    free_at_ = std::max(free_at_, now) + duration;
    wait = free_at_ - now;
  }
  SleepUnlessInterrupted(wait);
}

bool SleepUnlessInterrupted(std::chrono::nanoseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  for (auto left = time; left.count() > 0; left = end - std::chrono::steady_clock::now()) {
    if (IsInterrupted()) return false;
    std::this_thread::sleep_for(std::min<std::chrono::nanoseconds>(left, kLookUp));
  }
  return !IsInterrupted();
}

}  // namespace vdsto
