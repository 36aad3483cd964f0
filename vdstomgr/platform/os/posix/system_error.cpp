#include "vdstomgr/platform/os/system_error.h"

#include <cerrno>

namespace vdstomgr::os {

bool IsNoSpace(const std::error_code& error) {
  return error == std::errc::no_space_on_device || error == std::errc::file_too_large ||
         error == std::error_condition(EDQUOT, std::generic_category());
}

}  // namespace vdstomgr::os
