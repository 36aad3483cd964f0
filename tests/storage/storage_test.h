#pragma once

#include <gtest/gtest.h>
#if !defined(_WIN32)
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <filesystem>
#include <fstream>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "tests/child_process.h"
#include "vdstomgr/platform/os/file.h"
#include "vdstomgr/platform/report/hooks.h"

/// A test with a folder of its own that collects what the library reports. A child process works in
/// its parent's.
class StorageTest : public testing::Test {
 protected:
  StorageTest() {
    const auto& info = *testing::UnitTest::GetInstance()->current_test_info();
    folder_ = std::filesystem::path(testing::TempDir()) /
              (std::string("vdsto-") + info.test_suite_name() + "-" + info.name());
    if (ChildProcess::Order() == nullptr) std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
    vdstomgr::SetMessageBoxHandler([this](const char* text) { Note(boxes_, text); });
    vdstomgr::SetTraceHandler([this](const char* text) { Note(traces_, text); });
  }
  ~StorageTest() override {
    vdstomgr::SetMessageBoxHandler(nullptr);
    vdstomgr::SetTraceHandler(nullptr);
    std::filesystem::remove_all(folder_);
  }

  std::string Path(const std::string& name) const { return (folder_ / name).string(); }
  std::string Write(const std::string& name, const std::string& bytes) const {
    EXPECT_TRUE(std::ofstream(Path(name), std::ios::binary) << bytes) << name;
    return Path(name);
  }
  /// Not through a stream: on Windows these refuse a file that its writer may delete.
  static std::string Read(const std::string& path) {
    std::unique_ptr<vdstomgr::os::File> file;
    EXPECT_FALSE(vdstomgr::os::SystemFiles().Open(path, vdstomgr::os::OpenMode::read, file));
    std::string bytes(static_cast<std::size_t>(std::filesystem::file_size(path)), 0);
    std::size_t count = 0;
    EXPECT_FALSE(file == nullptr || file->ReadAt(0, bytes.data(), bytes.size(), count));
    return bytes;
  }
#if !defined(_WIN32)
  /// Runs in a process of its own, which ends without any clean-up: with 0, or with 1 for a false.
  static pid_t Start(const std::function<bool()>& work) {
    const pid_t process = fork();
    if (process == 0) _exit(work() ? 0 : 1);
    return process;
  }
  static int Run(const std::function<bool()>& work) {
    int status = 1;
    waitpid(Start(work), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }
#endif
  std::vector<std::string> TakeBoxes() {
    return std::exchange(boxes_, {});
  }
  std::vector<std::string> TakeTraces() {
    return std::exchange(traces_, {});
  }

 private:
  void Note(std::vector<std::string>& notes, const char* text) {
    const std::lock_guard lock(mutex_);
    notes.emplace_back(text);
  }

  std::filesystem::path folder_;
  std::mutex mutex_;
  std::vector<std::string> boxes_;
  std::vector<std::string> traces_;
};
