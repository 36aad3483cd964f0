#pragma once

#include <string>

namespace vdstomgr::os {

/// A path (UTF-8) in the form in which the system takes it whatever its length, for code that asks
/// the system itself: mostly as it is.
std::string LongPath(const std::string& path);

}  // namespace vdstomgr::os
