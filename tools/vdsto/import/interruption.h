#pragma once

namespace vdsto {

/// While it lives, Ctrl-C and a request to terminate only set a mark; a second one ends the process
/// at once. One within another's life does nothing of its own. One thread makes them.
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
