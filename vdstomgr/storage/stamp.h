#pragma once

#include "vdstomgr/platform/framework/types.h"

namespace vdstomgr {

/// A number that the process has not used before, and never 0: whoever remembers one can tell later
/// whether what it marked is still the same.
DWORD NewStamp();

}  // namespace vdstomgr
