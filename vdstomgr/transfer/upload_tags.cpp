#include "vdstomgr/transfer/upload_tags.h"

#include "vdstomgr/session/database_session.h"

namespace vdstomgr::transfer {

namespace {

/// Deletes for every GUID, whatever becomes of the others. Did all succeed?
template <class DeleteOne>
bool DeleteAll(DatabaseSession& db, const CStringArray& guids, DeleteOne delete_one) {
  return db.ForList(guids, [&] {
    bool all = true;
    for (const CString& guid : guids) all &= delete_one(guid);
    return all;
  });
}

}  // namespace

bool UploadTags::AddUploadTag(const char* guid, const CDWordArray& tagIDs) {
  return m_db->ForEach(tagIDs, [&](DWORD tag) {
    m_db->RunOrThrow("INSERT INTO UploadTag (szGUID, dwTagID) values ('%s', %d)", Raw(guid), tag);
  });
}

int UploadTags::GetUploadTag(const char* guid, CDWordArray& tagIDs) {
  const int before = tagIDs.GetSize();
  return m_db->Guarded(0, [&] {
    AppendRows(m_db->Select("SELECT dwTagID FROM UploadTag WHERE szGUID = '%s'", Raw(guid)),
               tagIDs);
    return tagIDs.GetSize() - before;
  });
}

bool UploadTags::DelUploadTag(const char* guid) {
  return m_db->ExecuteOrFail("DELETE FROM UploadTag WHERE szGUID = '%s'", Raw(guid));
}

bool UploadTags::DelUploadTag(const CStringArray& guids) {
  return DeleteAll(*m_db, guids, [&](const CString& guid) { return DelUploadTag(guid); });
}

bool UploadTags::RemoveUploadTag(DWORD tagID) {
  return m_db->ExecuteOrFail("DELETE FROM UploadTag WHERE dwTagID = %d", tagID);
}

bool UploadTags::AddUploadAlbum(const char* guid, const AlbumIndexArray& albums) {
  return m_db->ForEach(albums, [&](const ALBUMINDEX& album) {
    m_db->RunOrThrow("INSERT INTO UploadAlbum (szGUID, dwRoomID, dwAlbumID) values ('%s', %d, %d)",
                     Raw(guid), album.dwRoomID, album.dwAlbumID);
  });
}

int UploadTags::GetUploadAlbum(const char* guid, AlbumIndexArray& albums) {
  return m_db->Guarded(0, [&] {
    int count = 0;
    for (Row& row : m_db->Select("SELECT dwRoomID, dwAlbumID FROM UploadAlbum WHERE szGUID = '%s'",
                                 Raw(guid))) {
      albums.Add({row.Id("dwRoomID"), row.Id("dwAlbumID")});
      ++count;
    }
    return count;
  });
}

bool UploadTags::DelUploadAlbum(const char* guid) {
  return m_db->ExecuteOrFail("DELETE FROM UploadAlbum WHERE szGUID = '%s'", Raw(guid));
}

bool UploadTags::DelUploadAlbum(const CStringArray& guids) {
  return DeleteAll(*m_db, guids, [&](const CString& guid) { return DelUploadAlbum(guid); });
}

bool UploadTags::RemoveUploadAlbum(DWORD roomID, DWORD albumID) {
  return m_db->ExecuteOrFail("DELETE FROM UploadAlbum WHERE dwRoomID = %d AND dwAlbumID = %d",
                             roomID, albumID);
}

}  // namespace vdstomgr::transfer
