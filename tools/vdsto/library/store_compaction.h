#pragma once
#include <cstdint>
#include <string>

#include "tools/vdsto/library/library.h"
#include "tools/vdsto/library/store_repair.h"

namespace vdsto {

struct CompactionSummary {
  uint64_t images = 0;   ///< that are left
  uint64_t dropped = 0;  ///< of photos that are not in the catalogue
  StoreRepair repair;    ///< of the faults that there were
  uint64_t bytes_before = 0;
  uint64_t bytes_after = 0;
};

/// Drops damaged images and those that no photo names (of deleted photos, and of imports that were
/// killed before they wrote the row) and gives their space back. Throws ToolError when the store is
/// in use, and leaves every other image in place when the disk has no room for what stays.
CompactionSummary CompactImageStore(Library& library, const ImportLock& lock);

/// Throws ToolError unless the disk has room for a second store of so many bytes and images.
void RequireRoom(const std::string& path, uint64_t image_bytes, int images);

/// Deletes what a compaction leaves of the files that it replaced.
void DeleteOldPair(const std::string& path);

/// Opens a store as its only user, waiting a little. Throws ToolError.
void OpenStorage(const std::string& path, CRkStorageManager& storage);

}  // namespace vdsto
