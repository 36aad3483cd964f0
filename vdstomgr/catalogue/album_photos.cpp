#include <map>

#include "vdstomgr/catalogue/album_steps.h"
#include "vdstomgr/catalogue/albums.h"
#include "vdstomgr/catalogue/name_list.h"
#include "vdstomgr/tables/album_columns.h"
#include "vdstomgr/tables/tree_walk.h"

namespace vdstomgr::catalogue {

namespace {

/// The album of a row that names both keys.
ALBUMINDEX AlbumOf(Row& row) {
  return {row.Id("dwRoomID"), row.Id("dwAlbumID")};
}

CString AlbumPathsOf(DatabaseSession& db, const char* guid, TextView separator) {
  CString paths;
  for (Row& row : db.Select("SELECT b.dwRoomID, b.dwAlbumID, b.dwParentID, b.szAlbumName "
                            "FROM PhotoAlbum as a INNER JOIN AlbumInfo as b "
                            "ON a.dwAlbumID = b.dwAlbumID AND a.dwRoomID = b.dwRoomID "
                            "WHERE a.szGUID = '%s' ORDER BY b.szAlbumName",
                            Raw(guid)))
    AppendName(paths, AlbumPath(db, AlbumOf(row)), separator);
  return paths;
}

bool IsInAlbum(DatabaseSession& db, const CString& guid) {
  return FirstInteger(db.Select("SELECT COUNT(*) as Count FROM PhotoAlbum WHERE szGUID = '%s'",
                                Raw(guid))) > 0;
}

void AppendPhotos(DatabaseSession& db, ALBUMINDEX album, CStringArray& out) {
  AppendRows(db.Select("SELECT szGUID FROM PhotoAlbum WHERE dwRoomID = %d AND dwAlbumID= %d",
                       album.dwRoomID, album.dwAlbumID),
             out);
}

CDWordArray ChildAlbumIds(DatabaseSession& db, ALBUMINDEX album) {
  CDWordArray ids;
  AppendRows(db.Select("SELECT dwAlbumID FROM AlbumInfo WHERE dwRoomID = %d AND dwParentID= %d",
                       album.dwRoomID, album.dwAlbumID),
             ids);
  return ids;
}

}  // namespace

bool Albums::AddAlbum(const char* guid, DWORD room, DWORD album) {
  return m_db->ForOne(guid, [&](const CStringArray& one) { return AddAlbum(one, room, album); });
}

bool Albums::AddAlbum(const CStringArray& guids, DWORD room, DWORD album) {
  return m_db->ExecuteForEach(
      guids, "INSERT INTO PhotoAlbum (szGUID, dwRoomID, dwAlbumID) values ('%s', %d, %d)",
      kEachGuid, room, album);
}

bool Albums::RemoveAlbum(const char* guid, DWORD room, DWORD album) {
  return m_db->ForOne(guid, [&](const CStringArray& one) { return RemoveAlbum(one, room, album); });
}

bool Albums::RemoveAlbum(const CStringArray& guids, DWORD room, DWORD album) {
  return m_db->ExecuteForEach(
      guids, "DELETE FROM PhotoAlbum WHERE szGUID = '%s' AND dwRoomID = %d AND dwAlbumID = %d",
      kEachGuid, room, album);
}

bool Albums::IsAlbumPhoto(const char* guid, DWORD room, DWORD album) {
  return m_db->AskExists(
      "SELECT dwAlbumID FROM PhotoAlbum "
      "WHERE szGUID = '%s' AND dwRoomID = %d AND dwAlbumID = %d",
      Raw(guid), room, album);
}

void Albums::RemoveAllAlbumByGUID(const char* guid) {
  m_db->Guarded([&] { RemoveAllAlbumByGUID(CStringArray{guid}); });
}

void Albums::RemoveAllAlbumByGUID(const CStringArray& guids) {
  m_db->ExecuteForEach(guids, "DELETE FROM PhotoAlbum WHERE szGUID = '%s'", kEachGuid);
}

void Albums::RemoveAllAlbumByAlbumID(DWORD room, DWORD album, bool bRecursive) {
  m_db->Guarded([&] {
    AlbumArray below;
    if (bRecursive) below = AlbumsBelow(*m_db, {room, album});
    EmptyAlbum(*m_db, {room, album});
    for (const ALBUMINFO& child : below) EmptyAlbum(*m_db, {room, child.dwAlbumID});
  });
}

int Albums::GetAlbumLists(const char* guid, AlbumArray& out) {
  return m_db->AskRecords(
      out, kAlbumColumns,
      "SELECT distinct b.dwRoomID, b.dwAlbumID, b.dwParentID, b.szAlbumName, b.szDesc "
      "FROM PhotoAlbum as a INNER JOIN AlbumInfo as b "
      "ON a.dwRoomID = b.dwRoomID AND a.dwAlbumID = b.dwAlbumID WHERE a.szGUID = '%s'",
      Raw(guid));
}

int Albums::GetAlbumLists(const CStringArray& guids, AlbumArray& common, AlbumArray& partial) {
  if (guids.IsEmpty()) return 0;
  return m_db->Guarded(0, [&] {
    std::map<ALBUMINDEX, int> photos_by_album;
    for (const CString& guid : guids)
      for (Row& row : m_db->Select("SELECT * FROM PhotoAlbum WHERE szGUID = '%s'", Raw(guid)))
        ++photos_by_album[AlbumOf(row)];
    ALBUMINFO found;
    for (const auto& [album, photos] : photos_by_album)
      if (FindAlbum(*m_db, album, found)) (photos == guids.GetSize() ? common : partial).Add(found);
    return common.GetSize() + partial.GetSize();
  });
}

CString Albums::GetAlbumNames(const char* guid) {
  return GetAlbumNames2(guid, ",");
}

CString Albums::GetAlbumNames2(const char* guid, const char* separator) {
  return m_db->Guarded(CString(), [&] {
    return AlbumPathsOf(*m_db, guid, ViewOf(separator).empty() ? "," : separator);
  });
}

CString Albums::GetAlbumNames(const CStringArray& guids) {
  if (guids.IsEmpty()) return {};
  return m_db->Guarded(CString(), [&] {
    AlbumArray common, partial;
    GetAlbumLists(guids, common, partial);
    CString paths;
    for (const ALBUMINFO& album : common)
      AppendName(paths, AlbumPath(*m_db, {album.dwRoomID, album.dwAlbumID}));
    return paths;
  });
}

bool Albums::GetPublicState(const CStringArray& guids, CStringArray& in_albums,
                            CStringArray& in_none) {
  return m_db->ForEach(guids, [&](const CString& guid) {
    (IsInAlbum(*m_db, guid) ? in_albums : in_none).Add(guid);
  });
}

int Albums::GetPhotosInAlbum(DWORD room, DWORD album, CStringArray& out, bool bRecursive) {
  return m_db->Guarded(0, [&] {
    AppendPhotos(*m_db, {room, album}, out);
    if (!bRecursive) return out.GetSize();
    const auto children_of = [&](DWORD id) { return ChildAlbumIds(*m_db, {room, id}); };
    WalkTree(album, true, children_of, [&](DWORD child) {
      if (child != album) AppendPhotos(*m_db, {room, child}, out);
      return child;
    });
    return out.GetSize();
  });
}

int Albums::GetPhotosInRoom(DWORD room, CStringArray& out) {
  return m_db->AskList(out, "SELECT szGUID FROM PhotoAlbum WHERE dwRoomID = %d GROUP BY szGUID",
                       room);
}

}  // namespace vdstomgr::catalogue
