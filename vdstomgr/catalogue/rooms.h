#pragma once

#include "vdstomgr/catalogue/gallery_items.h"
#include "vdstomgr/records/room_info.h"

namespace vdstomgr::catalogue {

/// Rooms, in which albums are. Their ids come from elsewhere.
class VDSTO_API Rooms : public GalleryItems {
 public:
  /// False when the id is taken or the name does not fit.
  bool AddRoomInfo(const ROOMINFO& room);
  /// Rewrites the room of the record's id. True also when there is none.
  bool SetRoomInfo(const ROOMINFO& room);
  /// False, and the record as it was, when there is no such room.
  bool GetRoomInfo(DWORD id, ROOMINFO& room);
  /// By name.
  int GetAllRoomInfo(RoomArray& out);
  /// Empty when there is no such room.
  CString GetRoomName(DWORD id);
  /// Deletes the room with its tree of albums and their photos' memberships; true also when there
  /// is none.
  bool DelRoomInfo(DWORD id);
  /// Is there a room of that id, or name?
  bool IsRoom(DWORD id);
  bool IsRoom(const char* name);
};

}  // namespace vdstomgr::catalogue
