#pragma once

/// What a lock guards, said so that clang's -Wthread-safety checks it; nothing to other compilers.
#if defined(__clang__) && !defined(_WIN32)
#define VDSTO_THREAD_SAFETY(attribute) __attribute__((attribute))
#else
#define VDSTO_THREAD_SAFETY(attribute)
#endif

#define VDSTO_CAPABILITY VDSTO_THREAD_SAFETY(capability("lock"))
#define VDSTO_SCOPED_CAPABILITY VDSTO_THREAD_SAFETY(scoped_lockable)
/// A member that is touched with the lock held only.
#define VDSTO_GUARDED_BY(lock) VDSTO_THREAD_SAFETY(guarded_by(lock))
/// A function that takes the lock and returns with it.
#define VDSTO_ACQUIRE(...) VDSTO_THREAD_SAFETY(acquire_capability(__VA_ARGS__))
#define VDSTO_TRY_ACQUIRE(...) VDSTO_THREAD_SAFETY(try_acquire_capability(__VA_ARGS__))
/// A function that gives the lock back.
#define VDSTO_RELEASE(...) VDSTO_THREAD_SAFETY(release_capability(__VA_ARGS__))
/// A function whose caller holds the lock.
#define VDSTO_REQUIRES(...) VDSTO_THREAD_SAFETY(requires_capability(__VA_ARGS__))
/// A function that makes sure at run time that its caller holds the lock.
#define VDSTO_ASSERTS(...) VDSTO_THREAD_SAFETY(assert_capability(__VA_ARGS__))
/// A function that the analysis cannot follow; the reason stands beside it.
#define VDSTO_NO_THREAD_SAFETY VDSTO_THREAD_SAFETY(no_thread_safety_analysis)
