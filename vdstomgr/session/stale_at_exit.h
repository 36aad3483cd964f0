#pragma once

#include "vdstomgr/platform/os/lock.h"

namespace vdstomgr {

/// A change under way of what a cache was made from: holds the lock, and says at its end that the
/// cache is stale, however the change ended.
///
///   const StaleAtExit change(m_csDAO, m_bFolderChanged);
///   return m_db->Execute(...);
class [[nodiscard]] StaleAtExit {
 public:
  StaleAtExit(CRITICAL_SECTION& lock, bool& stale) : lock_(lock), stale_(stale) {}
  ~StaleAtExit() { stale_ = true; }
  StaleAtExit(const StaleAtExit&) = delete;
  StaleAtExit& operator=(const StaleAtExit&) = delete;

 private:
  ScopedLock lock_;  // released last
  bool& stale_;
};

}  // namespace vdstomgr
