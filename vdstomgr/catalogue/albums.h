#pragma once

#include "vdstomgr/catalogue/rooms.h"

namespace vdstomgr::catalogue {

/// The albums in a room, and the photos in them.
class VDSTO_API Albums : public Rooms {};

}  // namespace vdstomgr::catalogue
