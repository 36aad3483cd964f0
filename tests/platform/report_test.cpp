#include "vdstomgr/platform/report/hooks.h"
#include "vdstomgr/platform/report/report.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

#include "vdstomgr/platform/message_parser/wqtp_parser.h"
#include "vdstomgr/platform/os/lock.h"

namespace vdstomgr {
namespace {

TEST(Report, GoesToTheHandlerAndElseToStandardError) {
  std::string seen;
  SetMessageBoxHandler([&](const char* text) { seen += text; });
  SetDatabaseErrorHandler(
      [&](int code, const char* message) { seen += std::to_string(code) + message; });
  SetTraceHandler([&](const char* text) { seen += text; });
  ShowMessageBox("box ");
  ReportDatabaseError(3031, " password ");
  const CWQTPParser parser("a", "b", "c");
  Trace(" %d%%", 5);
  SetMessageBoxHandler(nullptr);
  SetDatabaseErrorHandler(nullptr);
  SetTraceHandler(nullptr);
#if !defined(_WIN32)  // would show them in message boxes, and wait
  testing::internal::CaptureStderr();
  ShowMessageBox("box");
  ReportDatabaseError(3031, "password");
  Trace("%s", "nobody listens");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "box\ndatabase error 3031: password\n");
#endif
  EXPECT_EQ(seen, "box 3031 password CWQTPParser(a, b, c) 5%");
}

TEST(Report, HandlersAreReplacedWhileOthersReport) {
  std::atomic<int> first = 0, second = 0;
  SetTraceHandler([&](const char*) { ++first; });
  std::thread reporter([] {
    for (int i = 0; i < 20000; ++i) Trace("%d", i);
  });
  for (int i = 0; i < 2000; ++i) {
    auto& count = i % 2 == 0 ? second : first;
    SetTraceHandler(
        [&count, kept = std::string(64, 'x')](const char*) { count += kept[63] == 'x'; });
  }
  reporter.join();
  SetTraceHandler(nullptr);
  EXPECT_EQ(first + second, 20000);
}

TEST(Lock, IsRecursiveAndKeepsOthersOut) {
  CRITICAL_SECTION section;
  InitializeCriticalSection(&section);
  const auto free_for_others = [&] {
    return std::async(std::launch::async,
                      [&] {
                        const bool entered = TryEnterCriticalSection(&section);
                        if (entered) LeaveCriticalSection(&section);
                        return entered;
                      })
        .get();
  };
  EXPECT_TRUE(free_for_others());
  EnterCriticalSection(&section);
  {
    const ScopedLock again(section);
    EXPECT_TRUE(TryEnterCriticalSection(&section));
    LeaveCriticalSection(&section);
  }
  EXPECT_FALSE(free_for_others());  // still held once
  LeaveCriticalSection(&section);
  EXPECT_TRUE(free_for_others());
  DeleteCriticalSection(&section);
}

}  // namespace
}  // namespace vdstomgr
