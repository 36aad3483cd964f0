#pragma once

#include "vdstomgr/records/album_info.h"
#include "vdstomgr/session/database_session.h"

/// Steps on rooms and albums that operations share: they run under the guard and throw.
namespace vdstomgr::catalogue {

/// Empty when there is no such room.
CString RoomName(DatabaseSession& db, DWORD room);

/// False, and `found` as it was, when there is no such album.
bool FindAlbum(DatabaseSession& db, ALBUMINDEX album, ALBUMINFO& found);
/// By name.
AlbumArray ChildAlbums(DatabaseSession& db, ALBUMINDEX album);
/// The children by name, each followed by what is below it. A circle of parents ends where it comes
/// back to `album`.
AlbumArray AlbumsBelow(DatabaseSession& db, ALBUMINDEX album);
/// The names of the room, the albums above and the album, joined by '/'; the room's alone for a
/// missing album. A circle of parents is gone round once.
CString AlbumPath(DatabaseSession& db, ALBUMINDEX album);

/// Takes all photos out of an album.
void EmptyAlbum(DatabaseSession& db, ALBUMINDEX album);
/// Deletes an album and all below it, with the memberships of their photos.
void RemoveAlbumTree(DatabaseSession& db, ALBUMINDEX album);

}  // namespace vdstomgr::catalogue
