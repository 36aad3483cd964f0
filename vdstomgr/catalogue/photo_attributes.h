#pragma once

#include "vdstomgr/catalogue/photos.h"

namespace vdstomgr::catalogue {

/// Single attributes of photos.
class VDSTO_API PhotoAttributes : public Photos {};

}  // namespace vdstomgr::catalogue
