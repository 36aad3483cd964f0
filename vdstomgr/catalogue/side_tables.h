#pragma once

#include "vdstomgr/catalogue/sync_process.h"

namespace vdstomgr::catalogue {

/// Local paths of photos, and the lists of cameras and lenses.
class VDSTO_API SideTables : public SyncProcess {};

}  // namespace vdstomgr::catalogue
