#pragma once

#include "vdstomgr/catalogue/tags.h"
#include "vdstomgr/records/room_info.h"

namespace vdstomgr::catalogue {

/// Rooms, in which albums are.
class VDSTO_API Rooms : public Tags {
 public:
  /// Rewrites the room of the record's id. True also when there is none.
  bool SetRoomInfo(const ROOMINFO& room);
};

}  // namespace vdstomgr::catalogue
