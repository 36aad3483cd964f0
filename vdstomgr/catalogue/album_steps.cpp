#include "vdstomgr/catalogue/album_steps.h"

#include <unordered_set>

#include "vdstomgr/tables/album_columns.h"
#include "vdstomgr/tables/tree_walk.h"

namespace vdstomgr::catalogue {

namespace {

void RemoveAlbum(DatabaseSession& db, ALBUMINDEX album) {
  db.Run("DELETE FROM AlbumInfo WHERE dwRoomID = %d AND dwAlbumID = %d", album.dwRoomID,
         album.dwAlbumID);
  EmptyAlbum(db, album);
}

}  // namespace

CString RoomName(DatabaseSession& db, DWORD room) {
  Rows rows = db.Select("SELECT * FROM RoomInfo WHERE dwRoomID = %d", room);
  return rows.HasRow() ? rows->Text("szRoomName") : CString();
}

bool FindAlbum(DatabaseSession& db, ALBUMINDEX album, ALBUMINFO& found) {
  Rows rows = db.Select(
      "SELECT dwRoomID, dwAlbumID, dwParentID, szAlbumName, szDesc FROM AlbumInfo "
      "WHERE dwRoomID = %d AND dwAlbumID = %d",
      album.dwRoomID, album.dwAlbumID);
  if (!rows.HasRow()) return false;
  found = kAlbumColumns.ReadFresh(rows->Recordset());
  return true;
}

AlbumArray ChildAlbums(DatabaseSession& db, ALBUMINDEX album) {
  AlbumArray children;
  for (Row& row : db.Select("SELECT dwRoomID, dwAlbumID, dwParentID, szAlbumName, szDesc "
                            "FROM AlbumInfo WHERE dwRoomID = %d AND dwParentID = %d "
                            "ORDER BY szAlbumName",
                            album.dwRoomID, album.dwAlbumID))
    children.Add(kAlbumColumns.ReadFresh(row.Recordset()));
  return children;
}

AlbumArray AlbumsBelow(DatabaseSession& db, ALBUMINDEX album) {
  AlbumArray below;
  const auto children_of = [&](DWORD id) { return ChildAlbums(db, {album.dwRoomID, id}); };
  WalkTree(album.dwAlbumID, true, children_of, [&](const ALBUMINFO& child) {
    if (child.dwAlbumID != album.dwAlbumID) below.Add(child);
    return child.dwAlbumID;
  });
  return below;
}

CString AlbumPath(DatabaseSession& db, ALBUMINDEX album) {
  CString path;
  std::unordered_set<DWORD> visited;
  for (ALBUMINFO found; visited.insert(album.dwAlbumID).second && FindAlbum(db, album, found);
       album.dwAlbumID = found.dwParentID) {
    path = visited.size() == 1 ? CString(found.szAlbumName) : found.szAlbumName + ("/" + path);
    if (album.dwAlbumID == 0) break;  // nothing is above it, whatever its row says
  }
  const CString room = RoomName(db, album.dwRoomID);
  return path.IsEmpty() ? room : room + "/" + path;
}

void EmptyAlbum(DatabaseSession& db, ALBUMINDEX album) {
  db.Run("DELETE FROM PhotoAlbum WHERE dwRoomID = %d AND dwAlbumID = %d", album.dwRoomID,
         album.dwAlbumID);
}

void RemoveAlbumTree(DatabaseSession& db, ALBUMINDEX album) {
  const AlbumArray below = AlbumsBelow(db, album);
  RemoveAlbum(db, album);
  for (const ALBUMINFO& child : below) RemoveAlbum(db, {child.dwRoomID, child.dwAlbumID});
}

}  // namespace vdstomgr::catalogue
