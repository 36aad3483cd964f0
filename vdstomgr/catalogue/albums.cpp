#include "vdstomgr/catalogue/albums.h"

#include "vdstomgr/catalogue/album_steps.h"
#include "vdstomgr/tables/album_columns.h"

namespace vdstomgr::catalogue {

namespace {

bool HasAlbum(DatabaseSession& db, DWORD room, DWORD parent, const char* name) {
  return db.Exists(
      "SELECT dwAlbumID FROM AlbumInfo "
      "WHERE dwRoomID = %d AND dwParentID = %d AND szAlbumName = '%s'",
      room, parent, name);
}

bool HasAlbum(DatabaseSession& db, DWORD room, DWORD album) {
  return db.Exists("SELECT dwAlbumID FROM AlbumInfo WHERE dwRoomID = %d AND dwAlbumID = %d", room,
                   album);
}

void RenameAlbum(DatabaseSession& db, DWORD room, DWORD album, const char* name, const char* desc) {
  db.Run(
      "UPDATE AlbumInfo SET szAlbumName = '%s', szDesc = '%s' "
      "WHERE dwRoomID = %d AND dwAlbumID = %d",
      name, desc, room, album);
}

}  // namespace

bool Albums::AddAlbumInfo(DWORD room, DWORD album, DWORD parent, const char* name,
                          const char* desc) {
  return m_db->Guarded(false, [&] {
    if (HasAlbum(*m_db, room, parent, name) || HasAlbum(*m_db, room, album)) return false;
    return m_db->Run(
               "INSERT INTO AlbumInfo (dwRoomID, dwAlbumID, dwParentID, szAlbumName, szDesc) "
               "values (%d, %d, %d, '%s', '%s')",
               room, album, parent, name, desc) != 0;
  });
}

bool Albums::AddAlbumInfo(const ALBUMINFO& album) {
  return AddAlbumInfo(album.dwRoomID, album.dwAlbumID, album.dwParentID, album.szAlbumName,
                      album.szDesc);
}

bool Albums::SetAlbumInfo(const ALBUMINFO& album) {
  return m_db->Guarded(false, [&] {
    RenameAlbum(*m_db, album.dwRoomID, album.dwAlbumID, album.szAlbumName, album.szDesc);
    return true;
  });
}

bool Albums::ChangeAlbumName(DWORD room, DWORD album, const char* name, const char* desc) {
  return m_db->Guarded(false, [&] {
    if (!HasAlbum(*m_db, room, album)) return false;
    RenameAlbum(*m_db, room, album, name, desc);
    return true;
  });
}

bool Albums::RemoveAlbumInfo(DWORD room, DWORD album) {
  return m_db->Guarded(false, [&] {
    RemoveAlbumTree(*m_db, {room, album});
    return true;
  });
}

bool Albums::IsAlbum(DWORD room, DWORD parent, const char* name) {
  return m_db->Guarded(false, [&] { return HasAlbum(*m_db, room, parent, name); });
}

bool Albums::IsAlbum(DWORD room, DWORD album) {
  return m_db->Guarded(false, [&] { return HasAlbum(*m_db, room, album); });
}

void Albums::GetSubAlbumInfo(DWORD room, DWORD parent, AlbumArray& out, bool bRecursive) {
  m_db->Guarded([&] {
    out.Append((bRecursive ? AlbumsBelow : ChildAlbums)(*m_db, {room, parent}));
  });
}

int Albums::GetSubAlbumList(DWORD room, DWORD parent, AlbumArray& out) {
  return m_db->Guarded(0, [&] {
    out.Append(ChildAlbums(*m_db, {room, parent}));
    return out.GetSize();
  });
}

int Albums::GetAlbumList(AlbumArray& out) {
  return m_db->AskRecords(out, kRoomlessAlbumColumns,
                          "SELECT dwAlbumID, dwParentID, szAlbumName, szDesc FROM AlbumInfo "
                          "ORDER BY dwParentID, szAlbumName");
}

bool Albums::GetAlbumInfo(DWORD room, DWORD album, ALBUMINFO& out) {
  return m_db->Guarded(false, [&] { return FindAlbum(*m_db, {room, album}, out); });
}

bool Albums::GetParentAlbumInfo(DWORD room, DWORD album, ALBUMINFO& out) {
  return m_db->Guarded(false, [&] {
    ALBUMINFO child;
    return FindAlbum(*m_db, {room, album}, child) &&
           FindAlbum(*m_db, {room, child.dwParentID}, out);
  });
}

CString Albums::GetAlbumName(DWORD room, DWORD album) {
  return m_db->AskText("SELECT szAlbumName FROM AlbumInfo WHERE dwRoomID = %d AND dwAlbumID = %d",
                       room, album);
}

CString Albums::GetAlbumPath(DWORD room, DWORD album) {
  return m_db->Guarded(CString(), [&] { return AlbumPath(*m_db, {room, album}); });
}

}  // namespace vdstomgr::catalogue
