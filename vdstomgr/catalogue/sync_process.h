#pragma once

#include "vdstomgr/catalogue/trash.h"

namespace vdstomgr::catalogue {

/// Handing changed photos over to the synchronisation.
class VDSTO_API SyncProcess : public Trash {};

}  // namespace vdstomgr::catalogue
