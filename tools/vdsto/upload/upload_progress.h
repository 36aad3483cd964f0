#pragma once
#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>

#include "tools/vdsto/import/progress_bar.h"

namespace vdsto {

/// Counts what goes out and draws it on a terminal: how many files, how fast, how long still. Any
/// thread counts, one draws.
class UploadProgress {
 public:
  UploadProgress(uint64_t files, uint64_t bytes, bool quiet);

  void Begin(const std::string& name);
  /// A file got from one position to the other, also backwards, for so many bytes sent.
  void Move(uint64_t from, uint64_t to, uint64_t sent) { done_ += to - from, sent_ += sent; }
  void AddFile() { ++files_done_; }
  uint64_t Sent() const { return sent_; }

  void Draw();
  void Clear() { bar_.Clear(); }

 private:
  using Clock = std::chrono::steady_clock;
  struct Sample {
    Clock::time_point time;
    uint64_t sent;
  };

  double BytesPerSecond();

  const uint64_t files_;
  const uint64_t bytes_;
  const bool quiet_;
  ProgressBar bar_;
  std::atomic<uint64_t> sent_{0};
  std::atomic<uint64_t> done_{0};
  std::atomic<uint64_t> files_done_{0};
  std::deque<Sample> samples_;  // the drawing thread's
  std::mutex mutex_;
  std::string name_;  // guarded by mutex_
};

}  // namespace vdsto
