#pragma once
#include <functional>

#include "tools/vdsto/backup/backup_folder.h"
#include "tools/vdsto/library/library.h"

namespace vdsto {

/// Is told of bytes that were read and how many there are about; throws to end the backup.
using BackupProgress = std::function<void(uint64_t done, uint64_t total)>;

/// Backs a library up into a folder that is locked, and answers the new generation, which is on the
/// device then. All files are taken as they are at one moment, and others may go on using the
/// library. What can be made again and cannot be read is left out. Throws ToolError; the older
/// generations are as they were then.
Generation BackUp(const LibraryOptions& library, BackupFolder& folder,
                  const BackupProgress& progress);

}  // namespace vdsto
