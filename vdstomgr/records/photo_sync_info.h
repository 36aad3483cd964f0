#pragma once

#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/types.h"
#include "vdstomgr/records/photo_info.h"

/// A changed photo on its way to the synchronisation, and what of it must be sent.
struct PHOTOSYNC_INFO {
  BYTE bInfoSync = 0;  ///< 1: its attributes
  BYTE bTagSync = 0;   ///< 1: its tags
  PHOTOINFO Photo;
  CDWordArray TagIDs;  ///< empty unless its tags must be sent
};

namespace vdstomgr {
using PhotoSyncArray = CArray<PHOTOSYNC_INFO, PHOTOSYNC_INFO&>;
}
