#pragma once
#include <chrono>
#include <cstdint>
#include <string>

namespace vdsto {

/// Tells on standard error how far an import is: a bar on a terminal, else a line now and then.
class Progress {
 public:
  explicit Progress(bool quiet);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// `found` grows while folders are still being walked.
  void Show(uint64_t done, uint64_t found, const std::string& path);
  /// Takes the bar away.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  void DrawBar(uint64_t done, uint64_t found, const std::string& path);

  const bool quiet_;
  const bool terminal_;
  bool drawn_ = false;
  Clock::time_point next_;
};

}  // namespace vdsto
