#include "tools/vdsto/upload/upload_progress.h"

#include <algorithm>
#include <cstdio>

#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

/// The rate is that of the last seconds: a line's speed changes.
constexpr std::chrono::seconds kWindow{10};
constexpr double kMostHours = 1000;

std::string DurationText(double seconds) {
  if (seconds > kMostHours * 3600) return "--:--";
  const auto whole = static_cast<unsigned long>(seconds + 0.5);
  const unsigned long hours = whole / 3600;
  char text[32];
  if (hours > 0) {
    std::snprintf(text, sizeof text, "%lu:%02lu:%02lu", hours, whole / 60 % 60, whole % 60);
  } else {
    std::snprintf(text, sizeof text, "%lu:%02lu", whole / 60, whole % 60);
  }
  return text;
}

}  // namespace

UploadProgress::UploadProgress(uint64_t files, uint64_t bytes, bool quiet)
    : files_(files), bytes_(bytes), quiet_(quiet) {}

void UploadProgress::Begin(const std::string& name) {
  if (quiet_ || !bar_.IsVisible()) return;
  const std::lock_guard lock(mutex_);
  name_ = name;
}

double UploadProgress::BytesPerSecond() {
  const auto now = Clock::now();
  samples_.push_back({now, sent_});
  while (samples_.size() > 2 && now - samples_[1].time > kWindow) samples_.pop_front();
  const double seconds = std::chrono::duration<double>(now - samples_.front().time).count();
  return seconds > 0 ? static_cast<double>(samples_.back().sent - samples_.front().sent) / seconds
                     : 0;
}

void UploadProgress::Draw() {
  if (quiet_ || !bar_.IsVisible()) return;
  const double rate = BytesPerSecond();
  const uint64_t done = std::min<uint64_t>(done_, bytes_);
  const double left = static_cast<double>(bytes_ - done) / std::max(rate, 1.0);
  const double fraction = bytes_ == 0 ? 1 : static_cast<double>(done) / static_cast<double>(bytes_);
  std::string name;
  {
    const std::lock_guard lock(mutex_);
    name = name_;
  }
  bar_.Draw(fraction,
            std::to_string(files_done_) + "/" + std::to_string(files_) + "  " +
                HumanSize(static_cast<unsigned long long>(rate)) + "/s  " + DurationText(left) +
                " left",
            name);
}

}  // namespace vdsto
