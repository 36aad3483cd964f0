#pragma once

#include <string>
#include <system_error>

#include "vdstomgr/platform/export.h"

namespace vdstomgr {

/// What the system refused, and for which file (in the process's code page).
struct StorageError {
  std::string path;
  std::error_code reason;
};

/// The storage classes answer false when the system refuses; this is the reason of the last such
/// answer on this thread, and forgets it. Empty when nothing was refused since the last call.
VDSTO_API StorageError TakeStorageError();

}  // namespace vdstomgr
