#pragma once

#include "vdstomgr/platform/export.h"

namespace vdstomgr {

/// Puts the two files of a storage (path of the data file, in the process's code page) back under
/// their names when a compaction was killed while it renamed: the old pair where that is all there,
/// else the new one. Deletes the pair that a killed compaction had not finished; ".bak" files stay.
/// True when the names are in order, also when there is no storage. Nobody may be compacting it.
VDSTO_API bool FinishCompaction(const char* path);

}  // namespace vdstomgr
