#pragma once

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/utility/bin_data.h"

namespace vdstomgr {

enum class StorageLookup {
  Found,
  NoRecord,
  Unreadable  ///< no pair of files that belong together, or keys of the other kind
};

/// Copies the data of the record with a key, the newest of several, out of the storage at `path`
/// (in the process's code page), which another process may have open and be writing. Claims
/// nothing, takes no lock and reads the index file once through; what the writer is moving just
/// then is looked for again. Only a whole record with the right checksum is found, and of what was
/// acknowledged before the call nothing is overlooked while the writer rests. `data` is empty
/// unless the answer is Found.
VDSTO_API StorageLookup ReadStorage(const char* path, const char* key, CBinData& data);
VDSTO_API StorageLookup ReadStorage(const char* path, DWORD key, CBinData& data);

}  // namespace vdstomgr
