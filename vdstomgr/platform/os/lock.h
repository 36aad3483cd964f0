#pragma once

#include "vdstomgr/platform/framework/types.h"

#if !defined(_WIN32)
#include <mutex>

/// A recursive lock, usable from construction on. (On Windows it is the system's own, which needs
/// InitializeCriticalSection first and DeleteCriticalSection last; here the two do nothing.)
struct CRITICAL_SECTION {
  std::recursive_mutex mutex;
};

inline void InitializeCriticalSection(CRITICAL_SECTION*) {}
inline void DeleteCriticalSection(CRITICAL_SECTION*) {}
inline void EnterCriticalSection(CRITICAL_SECTION* section) {
  section->mutex.lock();
}
inline void LeaveCriticalSection(CRITICAL_SECTION* section) {
  section->mutex.unlock();
}
/// FALSE when another thread holds the lock; the calling thread always gets what it holds already.
inline BOOL TryEnterCriticalSection(CRITICAL_SECTION* section) {
  return section->mutex.try_lock() ? TRUE : FALSE;
}
#endif

namespace vdstomgr {

/// Holds a CRITICAL_SECTION from construction to the end of the scope.
class [[nodiscard]] ScopedLock {
 public:
  explicit ScopedLock(CRITICAL_SECTION& section) : section_(section) {
    EnterCriticalSection(&section_);
  }
  ~ScopedLock() { LeaveCriticalSection(&section_); }
  ScopedLock(const ScopedLock&) = delete;
  ScopedLock& operator=(const ScopedLock&) = delete;

 private:
  CRITICAL_SECTION& section_;
};

/// A CRITICAL_SECTION that is ready for use as long as it lives.
class RecursiveLock {
 public:
  RecursiveLock() { InitializeCriticalSection(&section_); }
  ~RecursiveLock() { DeleteCriticalSection(&section_); }
  RecursiveLock(const RecursiveLock&) = delete;
  RecursiveLock& operator=(const RecursiveLock&) = delete;

  operator CRITICAL_SECTION&() { return section_; }
  void Enter() { EnterCriticalSection(&section_); }
  void Leave() { LeaveCriticalSection(&section_); }

 private:
  CRITICAL_SECTION section_;
};

}  // namespace vdstomgr
