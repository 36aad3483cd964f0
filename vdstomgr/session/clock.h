#pragma once

#include <atomic>
#include <cstdint>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/cstring.h"

namespace vdstomgr {

/// A clock that is set from outside and runs on by the system's tick count. Any thread may set and
/// read it.
class VDSTO_API Clock {
 public:
  /// Starts at the system's time.
  Clock();

  /// Seconds since 1970.
  void Set(std::int32_t time);
  /// The time, in the same seconds.
  std::int32_t Now() const;
  /// Now as the 19-character text that date columns hold.
  CString NowText() const;

 private:
  std::atomic<std::uint64_t> base_;  // the time set and the tick count then, changed together
};

}  // namespace vdstomgr
