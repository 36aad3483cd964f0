#pragma once

#include "vdstomgr/catalogue/albums.h"

namespace vdstomgr::catalogue {

/// Photos that were deleted and may come back.
class VDSTO_API Trash : public Albums {};

}  // namespace vdstomgr::catalogue
