#pragma once

#include <cstdint>

#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/types.h"

/// A tag. Texts are in the process's code page; the name has room for the 64 characters of its
/// column.
struct TAGINFO {
  DWORD dwTagID = 0;
  char szTagName[257] = {};
};

/// A tag and how many photos carry it.
struct TAGINFOCOUNT : TAGINFO {
  std::int32_t nCount = 0;
};

namespace vdstomgr {
using TagArray = CArray<TAGINFO, TAGINFO&>;
using TagCountArray = CArray<TAGINFOCOUNT, TAGINFOCOUNT&>;
}  // namespace vdstomgr
