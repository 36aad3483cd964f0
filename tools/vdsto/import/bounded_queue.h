#pragma once
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace vdsto {

/// A queue between threads that holds at most `capacity` items: a full queue makes the producers
/// wait.
template <typename Item>
class BoundedQueue {
 public:
  explicit BoundedQueue(size_t capacity) : capacity_(capacity) {}

  /// Waits for room. False, without taking the item, when the queue is closed.
  bool Push(Item item) {
    std::unique_lock lock(mutex_);
    has_room_.wait(lock, [&] { return closed_ || items_.size() < capacity_; });
    if (closed_) return false;
    items_.push_back(std::move(item));
    has_items_.notify_one();
    return true;
  }

  /// Waits for an item. Empty when the queue is closed and drained.
  std::optional<Item> Pop() {
    std::unique_lock lock(mutex_);
    has_items_.wait(lock, [&] { return closed_ || !items_.empty(); });
    return Take();
  }

  /// As Pop, but gives up at `deadline`; `timed_out` tells the two empty answers apart.
  template <typename TimePoint>
  std::optional<Item> PopUntil(TimePoint deadline, bool& timed_out) {
    std::unique_lock lock(mutex_);
    timed_out = !has_items_.wait_until(lock, deadline, [&] { return closed_ || !items_.empty(); });
    return Take();
  }

  /// No more items come; what is in the queue can still be taken.
  void Close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    WakeAll();
  }

  /// Closes the queue and drops what is in it.
  void Cancel() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    items_.clear();
    WakeAll();
  }

 private:
  void WakeAll() {
    has_items_.notify_all();
    has_room_.notify_all();
  }

  std::optional<Item> Take() {
    if (items_.empty()) return std::nullopt;
    std::optional<Item> item(std::move(items_.front()));
    items_.pop_front();
    has_room_.notify_one();
    return item;
  }

  const size_t capacity_;
  std::mutex mutex_;
  std::condition_variable has_items_;
  std::condition_variable has_room_;
  std::deque<Item> items_;  // guarded by mutex_
  bool closed_ = false;     // guarded by mutex_
};

}  // namespace vdsto
