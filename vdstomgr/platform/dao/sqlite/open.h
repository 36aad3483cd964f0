#pragma once

#include <string>
#include <string_view>

#include "vdstomgr/platform/dao/sqlite/connection.h"

namespace vdstomgr::sqlite {

/// Makes a new file that is ready to take a copy of a whole database under the password; empty
/// leaves it plain. Nothing is journalled and nothing waits for the device.
DatabaseHandle OpenCopy(const std::string& path, std::string_view password);

}  // namespace vdstomgr::sqlite
