#pragma once

#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/types.h"

/// A folder, date or tag that changed since a view last looked.
struct NOTIFY_INFO {
  DWORD id = 0;       ///< 0xFFFFFFFF: everything changed
  BYTE byteType = 0;  ///< the bits of what changed, which are the callers'; 255 when everything did
};

/// A deleted photo that changed since a view last looked.
struct TRASHNOTIFY_INFO {
  char szGUID[37] = {};  ///< empty: everything changed
  BYTE byteType = 0;
};

namespace vdstomgr {
using NotifyArray = CArray<NOTIFY_INFO, NOTIFY_INFO&>;
using TrashNotifyArray = CArray<TRASHNOTIFY_INFO, TRASHNOTIFY_INFO&>;
}  // namespace vdstomgr
