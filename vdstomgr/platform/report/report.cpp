#include "vdstomgr/platform/report/report.h"

#include "vdstomgr/platform/os/message_box.h"
#include "vdstomgr/platform/report/hooks.h"
#include "vdstomgr/platform/text/code_page.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <utility>

namespace vdstomgr {
namespace {

/// A handler that can be replaced while another thread is calling it.
template <class... Arguments>
class Hook {
 public:
  using Handler = std::function<void(Arguments...)>;

  void Set(Handler handler) {
    auto next = handler ? std::make_shared<const Handler>(std::move(handler)) : nullptr;
    const std::lock_guard lock(mutex_);
    is_set_.store(next != nullptr, std::memory_order_release);
    handler_.swap(next);
  }

  bool IsSet() const { return is_set_.load(std::memory_order_acquire); }

  /// False when there is no handler.
  bool Call(Arguments... arguments) const {
    if (!IsSet()) return false;
    const std::shared_ptr<const Handler> handler = Snapshot();
    if (handler == nullptr) return false;
    (*handler)(arguments...);
    return true;
  }

 private:
  std::shared_ptr<const Handler> Snapshot() const {
    const std::lock_guard lock(mutex_);
    return handler_;
  }

  std::atomic<bool> is_set_{false};
  mutable std::mutex mutex_;
  std::shared_ptr<const Handler> handler_;
};

/// Never destroyed: a host may report from its own last destructors.
template <class Hook>
Hook& Immortal() {
  static Hook& hook = *new Hook;
  return hook;
}

struct MessageBoxHook : Hook<const char*> {};
struct DatabaseErrorHook : Hook<int, const char*> {};
struct TraceHook : Hook<const char*> {};

}  // namespace

void SetMessageBoxHandler(std::function<void(const char*)> handler) {
  Immortal<MessageBoxHook>().Set(std::move(handler));
}

void SetDatabaseErrorHandler(std::function<void(int, const char*)> handler) {
  Immortal<DatabaseErrorHook>().Set(std::move(handler));
}

void SetTraceHandler(std::function<void(const char*)> handler) {
  Immortal<TraceHook>().Set(std::move(handler));
}

void ShowMessageBox(const char* text) {
  if (!Immortal<MessageBoxHook>().Call(text)) os::ShowMessage(ToUtf8(text));
}

void ReportDatabaseError(int code, const char* message) {
  if (!Immortal<DatabaseErrorHook>().Call(code, message)) {
    os::ShowMessage("database error " + std::to_string(code) + ": " + ToUtf8(message));
  }
}

void Trace(const char* format, ...) {
  const TraceHook& hook = Immortal<TraceHook>();
  if (!hook.IsSet()) return;
  CString text;
  std::va_list arguments;
  va_start(arguments, format);
  text.AppendFormatV(format, arguments);
  va_end(arguments);
  hook.Call(text);
}

}  // namespace vdstomgr
