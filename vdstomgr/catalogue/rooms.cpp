#include "vdstomgr/catalogue/rooms.h"

#include "vdstomgr/catalogue/album_steps.h"
#include "vdstomgr/session/column_kinds.h"

namespace vdstomgr::catalogue {

namespace {

constexpr ColumnMap kRoomColumns(std::array{
    Number<&ROOMINFO::dwRoomID>("dwRoomID"),
    FixedText<&ROOMINFO::szRoomName>("szRoomName"),
    Number<&ROOMINFO::byteOrgDown>("byteOrgDown"),
    Number<&ROOMINFO::byteUseComment>("byteUseComment"),
});

bool HasRoom(DatabaseSession& db, DWORD id) {
  return db.Exists("SELECT dwRoomID FROM RoomInfo WHERE dwRoomID = %d", id);
}

}  // namespace

bool Rooms::AddRoomInfo(const ROOMINFO& room) {
  return m_db->Guarded(false, [&] {
    if (HasRoom(*m_db, room.dwRoomID)) return false;
    return m_db->Run(
               "INSERT INTO RoomInfo (dwRoomID, szRoomName, byteOrgDown, byteUseComment) \t\t"
               "values (%d, '%s', %d, %d)",
               room.dwRoomID, room.szRoomName, room.byteOrgDown, room.byteUseComment) != 0;
  });
}

bool Rooms::SetRoomInfo(const ROOMINFO& room) {
  return m_db->Execute(
      "UPDATE RoomInfo SET szRoomName = '%s', byteOrgDown = %d, byteUseComment = %d "
      "WHERE dwRoomID = %d",
      room.szRoomName, room.byteOrgDown, room.byteUseComment, room.dwRoomID);
}

bool Rooms::GetRoomInfo(DWORD id, ROOMINFO& room) {
  return m_db->AskRecord(room, kRoomColumns, "SELECT * FROM RoomInfo WHERE dwRoomID = %d", id);
}

int Rooms::GetAllRoomInfo(RoomArray& out) {
  return m_db->AskRecords(out, kRoomColumns, "SELECT * FROM RoomInfo ORDER BY szRoomName");
}

CString Rooms::GetRoomName(DWORD id) {
  return m_db->Guarded(CString(), [&] { return RoomName(*m_db, id); });
}

bool Rooms::DelRoomInfo(DWORD id) {
  return m_db->Guarded(false, [&] {
    m_db->Run("DELETE FROM RoomInfo WHERE dwRoomID = %d", id);
    RemoveAlbumTree(*m_db, {id, 0});
    return true;
  });
}

bool Rooms::IsRoom(DWORD id) {
  return m_db->Guarded(false, [&] { return HasRoom(*m_db, id); });
}

bool Rooms::IsRoom(const char* name) {
  return m_db->AskExists("SELECT dwRoomID FROM RoomInfo WHERE szRoomName = '%s'", name);
}

}  // namespace vdstomgr::catalogue
