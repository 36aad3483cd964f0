#pragma once

#include "vdstomgr/platform/export.h"

class CRkPhotoImageStorage;
class CRkStorageManager;

namespace vdstomgr {

/// Returns when the device holds all records, those of the data file before the index that names
/// them: they survive a power cut from then on. Puts the index file in key order first. False when
/// nothing is open or the device refuses; nothing is lost then, but nothing is promised either.
VDSTO_API bool SyncStorage(CRkStorageManager& storage);
VDSTO_API bool SyncStorage(CRkPhotoImageStorage& images);

}  // namespace vdstomgr
