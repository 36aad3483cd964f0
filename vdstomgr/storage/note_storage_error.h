#pragma once

#include "vdstomgr/storage/storage_error.h"

namespace vdstomgr {

/// Keeps what the system refused, if it did, for TakeStorageError. Answers `reason`.
std::error_code NoteStorageError(const std::string& path, std::error_code reason);

}  // namespace vdstomgr
