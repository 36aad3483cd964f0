#pragma once
#include <string>

#include "tools/vdsto/backup/backup_folder.h"
#include "tools/vdsto/backup/backup_writer.h"

namespace vdsto {

/// Writes a generation into the folder of a library, which appears whole or not at all; every piece
/// is compared with its digest. A library that is there is replaced with `force` only, when nobody
/// uses it, and then keeps its files under another name. Answers that name, or an empty text.
/// Throws ToolError.
std::string Restore(const BackupFolder& folder, PieceStore& pieces, const Generation& generation,
                    const std::string& library_folder, bool force, const BackupProgress& progress);

}  // namespace vdsto
