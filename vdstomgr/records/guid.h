#pragma once

#include <string_view>

#include "vdstomgr/platform/export.h"

namespace vdstomgr {

/// Is it the form of a photo's GUID: 36 characters, hexadecimal digits in groups of 8, 4, 4, 4 and
/// 12 with hyphens between? GUIDs go into statements as they stand, so one that comes from outside
/// (a file, a network, a user) must be checked first.
VDSTO_API bool IsGuid(std::string_view text);

}  // namespace vdstomgr
