#pragma once
#include <cstdint>
#include <string>

#include "tools/vdsto/library/library.h"

namespace vdsto {

struct CompactionSummary {
  uint64_t images = 0;   ///< that are left
  uint64_t dropped = 0;  ///< of photos that are not in the catalogue
  uint64_t bytes_before = 0;
  uint64_t bytes_after = 0;
};

/// Drops the images that no photo names (of deleted photos, and of imports that were killed before
/// they wrote the row) and gives their space back. Throws ToolError and leaves everything in place
/// when the store has faults, is in use or does not fit on the disk twice. No import may run.
CompactionSummary CompactImageStore(Library& library);

/// Opens a store as its only user, waiting a little. Throws ToolError.
void OpenStorage(const std::string& path, CRkStorageManager& storage);

}  // namespace vdsto
