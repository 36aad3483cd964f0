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

std::string Fields(const ROOMINFO& room) {
  return Joined(room.dwRoomID, room.szRoomName, room.byteOrgDown, room.byteUseComment);
}

std::string Fields(const ALBUMINFO& album) {
  return Joined(album.dwRoomID, album.dwAlbumID, album.dwParentID, album.szAlbumName, album.szDesc);
}

/// The names of albums.
std::string Names(const AlbumArray& albums) {
  std::string names;
  for (const ALBUMINFO& album : albums) names += album.szAlbumName;
  return names;
}

#define ROOM(values) \
  "INSERT INTO RoomInfo (dwRoomID, szRoomName, byteOrgDown, byteUseComment) values (" values ")"
#define ALBUM(keys, name)                                                                      \
  "INSERT INTO AlbumInfo (dwRoomID, dwAlbumID, dwParentID, szAlbumName, szDesc) values (" keys \
  ", '" name "', '" name name "')"
#define MEMBER(values) "INSERT INTO PhotoAlbum (szGUID, dwRoomID, dwAlbumID) values (" values ")"

/// Room T: E over P and Q, D over X. Room 2: O, and M and N in each other.
const std::vector<const char*> kAlbums = {
    ROOM("1, 'T', 3, 4"),    ROOM("-2, 'b''s', 5, 6"), ALBUM("1, 3, 0", "E"),
    ALBUM("1, 9, 3", "Q"),   ALBUM("1, 7, 3", "P"),    ALBUM("1, 4, 0", "D"),
    ALBUM("1, 8, 4", "X"),   ALBUM("2, 20, 0", "O"),   ALBUM("2, 21, 22", "M"),
    ALBUM("2, 22, 21", "N"), MEMBER("'a', 1, 7"),      MEMBER("'b', 1, 7"),
    MEMBER("'a', 1, 3"),     MEMBER("'b', 2, 20"),     MEMBER("'c', 1, 8"),
    MEMBER("'c', 2, 21"),    MEMBER("'d', 2, 22"),     MEMBER("'a', 1, 99")};

const char* const kRooms = "SELECT * FROM RoomInfo ORDER BY dwRoomID";
const char* const kAlbumsOf1 = "SELECT * FROM AlbumInfo WHERE dwRoomID = 1 ORDER BY dwAlbumID";
const char* const kMembers = "SELECT szGUID, dwAlbumID FROM PhotoAlbum ORDER BY dwAlbumID, szGUID";

std::string RoomRecords(OpenCatalogue& c) {
  ROOMINFO room;
  RoomArray all;
  return Answers{c.GetRoomInfo(1, room), Fields(room), c.GetRoomInfo(5, room),
                 c.GetAllRoomInfo(all), Fields(all[0])};
}

std::string AlbumRecords(OpenCatalogue& c) {
  ALBUMINFO album, parent;
  const bool found = c.GetAlbumInfo(1, 9, album) && c.GetParentAlbumInfo(1, 9, parent);
  const std::string fields = Fields(album);
  CopyToFixed(album.szAlbumName, "o'n");
  CopyToFixed(album.szDesc, "o'd");
  const bool set = c.SetAlbumInfo(album);
  album.dwAlbumID = 10, album.dwParentID = 4;
  return Answers{found,
                 fields,
                 Fields(parent),
                 c.GetParentAlbumInfo(1, 3, parent),
                 c.GetAlbumInfo(2, 9, parent),
                 set,
                 c.AddAlbumInfo(album)};
}

std::string AlbumLists(OpenCatalogue& c) {
  AlbumArray below, circle, children, all;
  c.GetSubAlbumInfo(1, 0, below, true);
  c.GetSubAlbumInfo(2, 21, circle, true);
  c.GetSubAlbumInfo(1, 4, children, false);
  return Answers{Names(below),    Names(circle),       c.GetSubAlbumList(1, 3, children),
                 Names(children), Fields(children[1]), c.GetAlbumList(all),
                 Names(all),      Fields(all[0])};
}

std::string ListsOfPhotos(OpenCatalogue& c) {
  AlbumArray of_one, common(std::vector<ALBUMINFO>(1)), partial;
  CStringArray in, none;
  return Answers{c.GetAlbumLists("a", of_one),
                 Names(of_one),
                 c.GetAlbumLists({"a", "b"}, common, partial),
                 Fields(common[1]),
                 Names(partial),
                 c.GetPublicState({"x", "d", "a"}, in, none),
                 Listed(in),
                 Listed(none)};
}

std::string PhotosOf(OpenCatalogue& c) {
  CStringArray album, tree, circle, room;
  return Answers{c.GetPhotosInAlbum(1, 3, album, false),
                 Listed(album),
                 c.GetPhotosInAlbum(1, 3, tree, true),
                 Listed(tree),
                 c.GetPhotosInAlbum(2, 22, circle, true),
                 Listed(circle),
                 c.GetPhotosInRoom(1, room),
                 Listed(room)};
}

TEST_F(OperationTest, Rooms) {
  const std::string too_long(51, 'x');
  Check({
      {"a free id and a name that fits are added, a missing room is not set", kAlbums,
       [&](OpenCatalogue& c) {
         return Answers{c.AddRoomInfo(Room(1, "x", 0, 0)),
                        c.AddRoomInfo(Room(9, too_long.c_str(), 0, 0)),
                        c.AddRoomInfo(Room(8, "o'r", 7, 8)), c.SetRoomInfo(Room(1, "it's", 1, 2)),
                        c.SetRoomInfo(Room(9, "x", 0, 0))};
       },
       "0|0|1|1|1", kRooms, Split("-2|b's|5|6 / 1|it's|1|2 / 8|o'r|7|8")},
      {"rooms by name", kAlbums, RoomRecords, "1|1|T|3|4|0|2|4294967294|b's|5|6"},
      {"questions", kAlbums,
       ANSWERS(c.GetRoomName(1), c.GetRoomName(5), c.IsRoom("B'S"), c.IsRoom("x"), c.IsRoom(1u),
               c.IsRoom(5u)),
       "T||1|0|1|0"},
  });
}

TEST_F(OperationTest, Albums) {
  const std::string too_long(65, 'x');
  Check({
      {"neither a sibling's name, a taken id, nor a name too long is added", kAlbums,
       [&](OpenCatalogue& c) {
         return Answers{c.AddAlbumInfo(1, 50, 3, "p", ""), c.AddAlbumInfo(1, 7, 4, "P", ""),
                        c.AddAlbumInfo(2, 7, 20, "P", ""),
                        c.AddAlbumInfo(1, 51, 4, too_long.c_str(), ""),
                        c.AddAlbumInfo(1, 52, 4, "P", nullptr)};
       },
       "0|0|0|0|1", "SELECT * FROM AlbumInfo WHERE dwAlbumID > 22", Split("1|52|4|P|")},
      {"records are read and written", kAlbums, AlbumRecords, "1|1|9|3|Q|QQ|1|3|0|E|EE|0|0|1|1",
       kAlbumsOf1,
       Split("1|3|0|E|EE / 1|4|0|D|DD / 1|7|3|P|PP / 1|8|4|X|XX / 1|9|3|o'n|o'd / 1|10|4|o'n|o'd")},
      {"the memberships too; albums in each other go together", kAlbums,
       ANSWERS(c.RemoveAlbumInfo(1, 3), c.RemoveAlbumInfo(2, 21), c.IsAlbum(2, 22)), "1|1|0",
       kMembers, Split("c|8 / b|20 / a|99")},
      {"lists", kAlbums, AlbumLists, "DXEPQ|N|3|XPQ|1|7|3|P|PP|8|DEOPQXNM|0|4|0|D|DD"},
      {"questions", kAlbums,
       ANSWERS(c.GetAlbumName(1, 9), c.GetAlbumName(2, 9), c.IsAlbum(1, 3, "q"),
               c.IsAlbum(1, 4, "q"), c.IsAlbum(1, 9), c.IsAlbum(2, 9)),
       "Q||1|0|1|0"},
      {"paths", kAlbums,
       ANSWERS(c.GetAlbumPath(1, 9), c.GetAlbumPath(1, 20), c.GetAlbumPath(2, 22),
               c.GetAlbumNames("a"), c.GetAlbumNames2("a", "; "), c.GetAlbumNames2("c", nullptr),
               c.GetAlbumNames({"b", "a"})),
       "T/E/Q|T|/M/N|T/E,T/E/P|T/E; T/E/P|/N/M,T/D/X|T/E/P"},
  });
}

TEST_F(OperationTest, PhotosInAlbums) {
  Check({
      {"albums are emptied, with those below or without", kAlbums,
       ANSWERS((c.RemoveAllAlbumByAlbumID(1, 4, false), c.RemoveAllAlbumByAlbumID(1, 3, true),
                c.RemoveAllAlbumByAlbumID(2, 22, true), 0)),
       "0", kMembers, Split("c|8 / b|20 / a|99")},
      {"albums of photos", kAlbums, ListsOfPhotos, "2|EP|4|1|7|3|P|PP|EO|1|d,a|x"},
      {"photos of albums and rooms", kAlbums, PhotosOf, "1|a|3|a,a,b|2|d,c|3|a,b,c"},
  });
}

}  // namespace
}  // namespace vdstomgr
