#include "vdstomgr/platform/os/system_error.h"

#include "vdstomgr/platform/os/win32/system_call.h"

namespace vdstomgr::os {
namespace {

constexpr DWORD kDiskQuotaExceeded = 1295;  // ERROR_..., which not all headers have

}  // namespace

bool IsNoSpace(const std::error_code& error) {
  if (error.category() == std::generic_category()) {
    return error == std::errc::no_space_on_device || error == std::errc::file_too_large;
  }
  switch (static_cast<DWORD>(error.value())) {
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case kDiskQuotaExceeded:
    case ERROR_FILE_TOO_LARGE:
      return true;
    default:
      return false;
  }
}

}  // namespace vdstomgr::os
