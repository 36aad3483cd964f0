#pragma once

#include "vdstomgr/catalogue/rooms.h"
#include "vdstomgr/records/album_info.h"

namespace vdstomgr::catalogue {

/// The albums in a room, and the photos in them. Their ids come from elsewhere; a parent of 0 is
/// the room itself. Where all that is below an album is meant, each album comes before those in it,
/// and a circle of parents ends where it began.
class VDSTO_API Albums : public Rooms {
 public:
  /// ---- Albums ----

  /// False when a sibling has that name, when the id is taken, in whatever room, and when a text
  /// does not fit.
  bool AddAlbumInfo(DWORD room, DWORD album, DWORD parent, const char* name, const char* desc);
  bool AddAlbumInfo(const ALBUMINFO& album);
  /// Rewrites name and description. True also when there is no such album.
  bool SetAlbumInfo(const ALBUMINFO& album);
  /// The same; false when there is none.
  bool ChangeAlbumName(DWORD room, DWORD album, const char* name, const char* desc);
  /// Deletes an album and all below it with their memberships; the photos stay. True also when
  /// there is none. Album 0 is all that are in the room.
  bool RemoveAlbumInfo(DWORD room, DWORD album);
  /// Is there a child of that name?
  bool IsAlbum(DWORD room, DWORD parent, const char* name);
  bool IsAlbum(DWORD room, DWORD album);
  /// Appends the children by name, with `bRecursive` each followed by what is below it.
  void GetSubAlbumInfo(DWORD room, DWORD parent, AlbumArray& out, bool bRecursive);
  int GetSubAlbumList(DWORD room, DWORD parent, AlbumArray& out);
  /// The albums of all rooms by parent and name. On purpose the room is not read.
  int GetAlbumList(AlbumArray& out);
  /// Fill a fresh record; false, and the record as it was, when there is no such album.
  bool GetAlbumInfo(DWORD room, DWORD album, ALBUMINFO& out);
  bool GetParentAlbumInfo(DWORD room, DWORD album, ALBUMINFO& out);
  /// Empty when there is no such album.
  CString GetAlbumName(DWORD room, DWORD album);
  /// "room/top album/.../album"; the room's name alone when there is no such album.
  CString GetAlbumPath(DWORD room, DWORD album);

  /// ---- Photos in albums ----

  /// Photos that are in the album stay in it. The album need not exist.
  bool AddAlbum(const char* guid, DWORD room, DWORD album);
  bool AddAlbum(const CStringArray& guids, DWORD room, DWORD album);
  /// Takes photos out of an album; true also when they are not in it.
  bool RemoveAlbum(const char* guid, DWORD room, DWORD album);
  bool RemoveAlbum(const CStringArray& guids, DWORD room, DWORD album);
  /// Is the photo in the album?
  bool IsAlbumPhoto(const char* guid, DWORD room, DWORD album);
  /// Takes photos out of all albums.
  void RemoveAllAlbumByGUID(const char* guid);
  void RemoveAllAlbumByGUID(const CStringArray& guids);
  /// Takes all photos out of an album, with `bRecursive` also out of all below it.
  void RemoveAllAlbumByAlbumID(DWORD room, DWORD album, bool bRecursive);
  /// The albums of a photo, in no order.
  int GetAlbumLists(const char* guid, AlbumArray& out);
  /// The albums that all of the photos are in, and those that only some are in, by room and album
  /// id. Answers the size of both lists together; 0 at once for no photos.
  int GetAlbumLists(const CStringArray& guids, AlbumArray& common, AlbumArray& partial);
  /// The paths of a photo's albums, by album name, joined by ','.
  CString GetAlbumNames(const char* guid);
  /// The same, joined by `separator`; null and empty are ','.
  CString GetAlbumNames2(const char* guid, const char* separator);
  /// The paths of the albums that all of the photos are in, by room and album id, joined by ','.
  CString GetAlbumNames(const CStringArray& guids);
  /// Appends the photos that are in an album to `in_albums`, the others to `in_none`.
  bool GetPublicState(const CStringArray& guids, CStringArray& in_albums, CStringArray& in_none);
  /// With `bRecursive` followed by the photos of all albums below; a photo of several albums is
  /// listed for each.
  int GetPhotosInAlbum(DWORD room, DWORD album, CStringArray& out, bool bRecursive);
  /// Every photo once.
  int GetPhotosInRoom(DWORD room, CStringArray& out);
};

}  // namespace vdstomgr::catalogue
