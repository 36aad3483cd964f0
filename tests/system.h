#pragma once

#include <gtest/gtest.h>
#if !defined(_WIN32)
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <cstdlib>
#include <functional>
#include <string_view>

#include "vdstomgr/platform/os/local_time.h"

/// What tests ask of the system.

#if defined(_WIN32)

/// A test that cannot run there says so under its name.
#define NOT_ON_WINDOWS(Fixture, Name, reason) \
  TEST_F(Fixture, Name) {                     \
    GTEST_SKIP() << reason;                   \
  }

/// Puts the process into a time zone. False where it is in another and cannot choose: there what
/// starts a program does, and names the zone in TZ.
inline bool EnterZone(std::string_view zone) {
  const char* const actual = std::getenv("TZ");
  return actual != nullptr && actual == zone;
}
inline void LeaveZone() {}

#else

inline bool EnterZone(const char* zone) {
  setenv("TZ", zone, 1);
  vdstomgr::os::ForgetTimeZone();
  return true;
}
inline void LeaveZone() {
  unsetenv("TZ");
  vdstomgr::os::ForgetTimeZone();
}

/// Runs `body` in a child process, which answers with its exit code.
inline int InChild(const std::function<int()>& body) {
  const pid_t child = fork();
  if (child == 0) _exit(body());
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

#endif
