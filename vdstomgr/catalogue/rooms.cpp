#include "vdstomgr/catalogue/rooms.h"

#include "vdstomgr/session/database_session.h"

namespace vdstomgr::catalogue {

bool Rooms::SetRoomInfo(const ROOMINFO& room) {
  return m_db->Execute(
      "UPDATE RoomInfo SET szRoomName = '%s', byteOrgDown = %d, byteUseComment = %d "
      "WHERE dwRoomID = %d",
      room.szRoomName, room.byteOrgDown, room.byteUseComment, room.dwRoomID);
}

}  // namespace vdstomgr::catalogue
