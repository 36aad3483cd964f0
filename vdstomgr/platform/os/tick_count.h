#pragma once

#include "vdstomgr/platform/framework/types.h"

#if !defined(_WIN32)
/// Milliseconds of a clock that is never set back. Wraps to 0 after 2^32: subtract two readings as
/// unsigned numbers.
DWORD GetTickCount();
#endif
