#pragma once

#include "vdstomgr/platform/framework/types.h"
#include "vdstomgr/platform/os/thread_safety.h"

#if !defined(_WIN32)
#include <mutex>

/// A recursive lock, usable from construction on. (On Windows it is the system's own, which needs
/// InitializeCriticalSection first and DeleteCriticalSection last; here the two do nothing.)
struct VDSTO_CAPABILITY CRITICAL_SECTION {
  std::recursive_mutex mutex;
};

inline void InitializeCriticalSection(CRITICAL_SECTION*) {}
inline void DeleteCriticalSection(CRITICAL_SECTION*) {}
inline void EnterCriticalSection(CRITICAL_SECTION* section)
    VDSTO_ACQUIRE(section) VDSTO_NO_THREAD_SAFETY {
  section->mutex.lock();
}
inline void LeaveCriticalSection(CRITICAL_SECTION* section)
    VDSTO_RELEASE(section) VDSTO_NO_THREAD_SAFETY {
  section->mutex.unlock();
}
/// FALSE when another thread holds the lock; the calling thread always gets what it holds already.
inline BOOL TryEnterCriticalSection(CRITICAL_SECTION* section)
    VDSTO_TRY_ACQUIRE(TRUE, section) VDSTO_NO_THREAD_SAFETY {
  return section->mutex.try_lock() ? TRUE : FALSE;
}
#endif

namespace vdstomgr {

/// Holds a CRITICAL_SECTION from construction to the end of the scope.
class [[nodiscard]] VDSTO_SCOPED_CAPABILITY ScopedLock {
 public:
  explicit ScopedLock(CRITICAL_SECTION& section) VDSTO_ACQUIRE(section) : section_(section) {
    EnterCriticalSection(&section_);
  }
  ~ScopedLock() VDSTO_RELEASE() { LeaveCriticalSection(&section_); }
  ScopedLock(const ScopedLock&) = delete;
  ScopedLock& operator=(const ScopedLock&) = delete;

 private:
  CRITICAL_SECTION& section_;
};

/// A CRITICAL_SECTION that is ready for use as long as it lives.
class VDSTO_CAPABILITY RecursiveLock {
 public:
  RecursiveLock() { InitializeCriticalSection(&section_); }
  ~RecursiveLock() { DeleteCriticalSection(&section_); }
  RecursiveLock(const RecursiveLock&) = delete;
  RecursiveLock& operator=(const RecursiveLock&) = delete;

  operator CRITICAL_SECTION&() { return section_; }
  /// For operations that return with the lock held, and the ones that give it back: clang's
  /// analysis does not follow a lock from one call of the host to another, so these two are not
  /// told to it.
  void Enter() VDSTO_NO_THREAD_SAFETY { EnterCriticalSection(&section_); }
  void Leave() VDSTO_NO_THREAD_SAFETY { LeaveCriticalSection(&section_); }

 private:
  CRITICAL_SECTION section_;
};

/// A lock that one call of a host takes and a later one of the same thread gives back. Giving back
/// what the thread does not hold does nothing.
class LentLock {
 public:
  void Lend() {
    lock_.Enter();
    ++loans_;
  }
  void TakeBack() VDSTO_NO_THREAD_SAFETY {
    CRITICAL_SECTION& section = lock_;
    if (!TryEnterCriticalSection(&section)) return;  // another thread's
    if (loans_ > 0) {
      --loans_;
      LeaveCriticalSection(&section);
    }
    LeaveCriticalSection(&section);
  }

 private:
  RecursiveLock lock_;
  int loans_ = 0;  // of the thread that holds the lock
};

}  // namespace vdstomgr
