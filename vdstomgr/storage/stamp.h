#pragma once

#include "vdstomgr/platform/framework/types.h"

namespace vdstomgr {

/// Gives out numbers that the process has not used before, and never 0: whoever remembers one can
/// tell later whether what it marked is still the same. Each source takes its numbers from the
/// process's in lots, so that most cost next to nothing. Not thread-safe.
class StampSource {
 public:
  DWORD New() {
    if (left_ == 0) TakeLot();
    --left_;
    return next_++;
  }

 private:
  void TakeLot();

  DWORD next_ = 0;
  DWORD left_ = 0;
};

}  // namespace vdstomgr
