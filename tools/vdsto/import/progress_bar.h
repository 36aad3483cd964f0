#pragma once
#include <chrono>
#include <string>

namespace vdsto {

/// A bar on standard error that is drawn over itself now and then. One thread uses it.
class ProgressBar {
 public:
  ProgressBar();
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  /// Is standard error a terminal, so that there is something to draw on?
  bool IsVisible() const { return is_visible_; }
  /// "[####....] text  name", the name as far as there is room. `fraction` is between 0 and 1. Does
  /// nothing when the last time is no tenth of a second ago.
  void Draw(double fraction, const std::string& text, const std::string& name);
  /// Takes the bar away.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  const bool is_visible_;
  bool is_drawn_ = false;
  Clock::time_point next_;
};

}  // namespace vdsto
