#pragma once

namespace vdsto {

/// While it lives, Ctrl-C and a request to terminate only set a mark; a second one ends the process
/// at once.
class InterruptionGuard {
 public:
  InterruptionGuard();
  ~InterruptionGuard();
  InterruptionGuard(const InterruptionGuard&) = delete;
  InterruptionGuard& operator=(const InterruptionGuard&) = delete;
};

/// Has the user asked to stop?
bool IsInterrupted();

}  // namespace vdsto
