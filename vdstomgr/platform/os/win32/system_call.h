#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <system_error>

#include "vdstomgr/platform/framework/types.h"
#include "vdstomgr/platform/os/mapping.h"

/// Shared by the sources of this folder.
namespace vdstomgr::os {

inline std::error_code LastError() {
  return {static_cast<int>(GetLastError()), std::system_category()};
}

inline std::error_code ErrorUnless(BOOL success) {
  return success ? std::error_code() : LastError();
}

inline DWORD LowHalf(std::uint64_t number) {
  return static_cast<DWORD>(number);
}
inline DWORD HighHalf(std::uint64_t number) {
  return static_cast<DWORD>(number >> 32);
}

struct HandleCloser {
  using pointer = HANDLE;
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
/// A handle that somebody owns; null when there is none.
using Handle = std::unique_ptr<void, HandleCloser>;

/// The same text as the system takes it; empty when it is not UTF-8.
std::wstring Widen(const std::string& text);

/// A UTF-8 path as the system takes it, whatever its length; empty, which is no file's name, when
/// it is not UTF-8.
std::wstring WidePath(const std::string& path);

/// Maps a range that lies inside the open file.
std::error_code MapWindowsFile(HANDLE file, std::uint64_t offset, std::uint64_t size, Paging paging,
                               std::unique_ptr<Mapping>& mapping);

}  // namespace vdstomgr::os
