#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <utility>

#include "vdstomgr/platform/framework/types.h"

/// Tells a host how far a long operation is. A value: copies call the same function. Empty from
/// nullptr or 0, and then silent.
class CRkCallback {
 public:
  using Function = std::function<void(DWORD done, DWORD total, const char* text, bool flag)>;

  CRkCallback() = default;
  CRkCallback(std::nullptr_t) {}
  template <class Callable>
  requires std::invocable<Callable&, DWORD, DWORD, const char*, bool> CRkCallback(Callable callable)
      : function_(std::move(callable)) {}

  /// `text` may be null.
  void SetProgress(DWORD done, DWORD total, const char* text, bool flag) const {
    if (function_) function_(done, total, text, flag);
  }
  /// For operations that do not know their total, which is then 0.
  void SetProgress(DWORD done, const char* text) const { SetProgress(done, 0, text, false); }

 private:
  Function function_;
};
