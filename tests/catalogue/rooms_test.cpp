#include "operation_table.h"
#include "vdstomgr/records/fixed_text.h"

namespace vdstomgr {
namespace {

ROOMINFO Room(DWORD id, const char* name, BYTE down, BYTE comment) {
  ROOMINFO room;
  room.dwRoomID = id;
  CopyToFixed(room.szRoomName, name);
  room.byteOrgDown = down;
  room.byteUseComment = comment;
  return room;
}

TEST_F(OperationTest, Rooms) {
  const char* const rooms = "SELECT * FROM RoomInfo ORDER BY dwRoomID";
  Check({
      {"a room is rewritten",
       {"INSERT INTO RoomInfo (dwRoomID, szRoomName) values (1, 'a')",
        "INSERT INTO RoomInfo (dwRoomID, szRoomName) values (2, 'b')"},
       ANSWER_OF(SetRoomInfo(Room(2, "it's", 3, 4))),
       "1",
       rooms,
       {"1|a|null|null", "2|it's|3|4"}},
      {"a missing room is not added",
       {},
       ANSWER_OF(SetRoomInfo(Room(9, "x", 0, 0))),
       "1",
       rooms,
       {}},
  });
}

}  // namespace
}  // namespace vdstomgr
