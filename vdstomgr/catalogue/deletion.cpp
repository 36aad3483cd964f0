#include "vdstomgr/catalogue/deletion.h"

#include "vdstomgr/platform/message_parser/wqtp_parser.h"
#include "vdstomgr/records/folder_ids.h"
#include "vdstomgr/session/database_session.h"
#include "vdstomgr/session/stale_at_exit.h"

namespace vdstomgr::catalogue {

namespace {

/// Runs `body(item)` for every item and tells how far it is after each.
template <class List, class Body>
void ForEachTold(const List& items, const CRkCallback& progress, Body body) {
  DWORD done = 0;
  for (const auto& item : items) {
    body(item);
    progress.SetProgress(done++, static_cast<DWORD>(items.GetSize()), nullptr, false);
  }
}

}  // namespace

bool Deletion::DeleteFolder(DWORD id) {
  return IsReservedFolder(id) || m_db->ForOne(id, [&](const CDWordArray& one) {
    return DeleteFoldersAndRelations(one, true, nullptr);
  });
}

// Tags, albums, paths and queues of the deleted photos stay, on purpose.
bool Deletion::DeleteFoldersAndRelations(const CDWordArray& ids, bool delete_folders,
                                         CRkCallback progress) {
  if (ids.IsEmpty()) return true;
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->Guarded(false, [&] {
    const CWQTPParser parser("quillora", "TqUploadMgr", "remove");
    ForEachTold(ids, progress, [&](DWORD id) {
      m_db->Run("DELETE FROM PhotoMaster WHERE dwFolderID = %d", id);
      if (delete_folders) m_db->Run("DELETE FROM FolderInfo WHERE dwFolderID = %d", id);
    });
    return true;
  });
}

bool Deletion::DeletePhotosAndRelations(const CStringArray& guids, CRkCallback progress) {
  return m_db->Guarded(false, [&] {
    ForEachTold(guids, progress, [&](const CString& guid) {
      RemoveAllTagByGUID(guid, true);
      RemoveAllAlbumByGUID(guid);
      DelRP(guid);
      DelOP(guid);
      m_db->Run("DELETE FROM PhotoMaster WHERE szGUID = '%s'", Raw(guid));
    });
    return true;
  });
}

bool Deletion::DeletePhotosAndRelations(const char* guid, CRkCallback progress) {
  return m_db->ForOne(
      guid, [&](const CStringArray& one) { return DeletePhotosAndRelations(one, progress); });
}

}  // namespace vdstomgr::catalogue
