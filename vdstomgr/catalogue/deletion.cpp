#include "vdstomgr/catalogue/deletion.h"

#include "vdstomgr/platform/message_parser/wqtp_parser.h"
#include "vdstomgr/records/folder_ids.h"
#include "vdstomgr/session/database_session.h"
#include "vdstomgr/session/stale_at_exit.h"

namespace vdstomgr::catalogue {

bool Deletion::DeleteFolder(DWORD id) {
  return IsReservedFolder(id) || DeleteFoldersAndRelations(CDWordArray{id}, true, nullptr);
}

// Tags, albums, paths and queues of the deleted photos stay, on purpose.
bool Deletion::DeleteFoldersAndRelations(const CDWordArray& ids, bool delete_folders,
                                         CRkCallback progress) {
  if (ids.IsEmpty()) return true;
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->Guarded(false, [&] {
    const CWQTPParser parser("quillora", "TqUploadMgr", "remove");
    const auto count = static_cast<DWORD>(ids.GetSize());
    for (DWORD i = 0; i < count; ++i) {
      const DWORD id = ids[static_cast<int>(i)];
      m_db->Run("DELETE FROM PhotoMaster WHERE dwFolderID = %d", id);
      if (delete_folders) m_db->Run("DELETE FROM FolderInfo WHERE dwFolderID = %d", id);
      progress.SetProgress(i, count, nullptr, false);
    }
    return true;
  });
}

}  // namespace vdstomgr::catalogue
