#pragma once

#include <cstdint>

#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/types.h"

/// How many photos a folder holds. Folders without photos have no such record.
struct COUNTINFOLDER {
  DWORD dwFolderID = 0;
  std::int32_t Count = 0;
};

namespace vdstomgr {
using CountArray = CArray<COUNTINFOLDER, COUNTINFOLDER&>;
}
