#pragma once
#include <chrono>
#include <cstdint>
#include <string>

#include "tools/vdsto/import/progress_bar.h"

namespace vdsto {

/// Tells on standard error how far an import is: a bar on a terminal, else a line now and then.
class Progress {
 public:
  explicit Progress(bool quiet);

  /// `found` grows while folders are still being walked.
  void Show(uint64_t done, uint64_t found, const std::string& path);
  /// Takes the bar away.
  void Clear() { bar_.Clear(); }

 private:
  using Clock = std::chrono::steady_clock;

  const bool quiet_;
  ProgressBar bar_;
  Clock::time_point next_line_;
};

}  // namespace vdsto
