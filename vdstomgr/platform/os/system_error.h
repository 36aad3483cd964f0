#pragma once

#include <system_error>

namespace vdstomgr::os {

/// Has the device, or the user's share of it, no space for more, or the file system none for a file
/// as large as that?
bool IsNoSpace(const std::error_code& error);

}  // namespace vdstomgr::os
