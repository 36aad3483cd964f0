#pragma once

#include <gtest/gtest.h>
#if defined(_WIN32)
#include <windows.h>
#else
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <cstdio>
#include <cstdlib>
#include <string>

/// This test program started again with the running test alone, as a process to be killed. It has
/// nothing of its parent's but the environment and a text; it says what it does in a file.
class ChildProcess {
 public:
  /// In the child: what its parent has to say. Null in every other process.
  static const char* Order() { return std::getenv(kVariable); }

  explicit ChildProcess(const std::string& order) {
    const auto& test = *testing::UnitTest::GetInstance()->current_test_info();
    const std::string filter =
        std::string("--gtest_filter=") + test.test_suite_name() + "." + test.name();
    Start(filter, order);
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

#if defined(_WIN32)
  ~ChildProcess() {
    CloseHandle(process_);
  }

  /// False when it had ended by itself.
  bool Kill() {
    DWORD code = 0;
    const bool killed = TerminateProcess(process_, kKilled) != 0;
    WaitForSingleObject(process_, INFINITE);
    return killed && GetExitCodeProcess(process_, &code) && code == kKilled;
  }

 private:
  static constexpr DWORD kKilled = 137;

  void Start(const std::string& filter, const std::string& order) {
    char program[MAX_PATH];
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    std::string command = '"' + std::string(program) + "\" " + filter;
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;  // none: it is silent
    PROCESS_INFORMATION started{};
    SetEnvironmentVariableA(kVariable, order.c_str());
    EXPECT_TRUE(CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                               nullptr, &startup, &started));
    SetEnvironmentVariableA(kVariable, nullptr);
    CloseHandle(started.hThread);
    process_ = started.hProcess;
  }

  HANDLE process_ = nullptr;
#else
  /// False when it had ended by itself.
  bool Kill() {
    int status = 0;
    kill(process_, SIGKILL);
    waitpid(process_, &status, 0);
    return WIFSIGNALED(status);
  }

 private:
  void Start(const std::string& filter, const std::string& order) {
    process_ = fork();
    if (process_ != 0) return;
    setenv(kVariable, order.c_str(), 1);
    if (std::freopen("/dev/null", "w", stdout) == nullptr) _exit(126);
    execl("/proc/self/exe", "test", filter.c_str(), nullptr);
    _exit(127);
  }

  pid_t process_ = 0;
#endif

  static constexpr const char* kVariable = "VDSTO_TEST_CHILD";
};
