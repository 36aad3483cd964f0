#include "vdstomgr/catalogue/folder_attributes.h"

#include <atomic>

#include "vdstomgr/session/database_session.h"

namespace vdstomgr::catalogue {

namespace {

/// What `count` answered when it was first asked in this process.
template <class Count>
int FirstAnswer(std::atomic<int>& kept, Count count) {
  if (int none = -1; kept == none) kept.compare_exchange_strong(none, count());
  return kept;
}

}  // namespace

int FolderAttributes::GetAllSharedFolderCount() {
  return m_db->AskInteger(0, "SELECT Count(*) as Count FROM FolderInfo WHERE bSharedOption = 1");
}

int FolderAttributes::GetAllSecureFolderCount() {
  return m_db->AskInteger(0, "SELECT Count(*) as Count FROM FolderInfo WHERE bSecureFolder = 1");
}

int FolderAttributes::GetAllLimitedUpDownFolderCount() {
  return m_db->AskInteger(0,
                          "SELECT Count(*) as Count FROM FolderInfo WHERE nFolderUpDownType <> 3");
}

int FolderAttributes::GetAllUpOnlyFolderCount() {
  return m_db->AskInteger(0,
                          "SELECT Count(*) as Count FROM FolderInfo WHERE nFolderUpDownType = 2");
}

int FolderAttributes::SubFolderCountIsLargeForCheckFolderAuthorityEdit(DWORD id, bool recursive) {
  static std::atomic<int> first_limit = -1;
  return m_db->Guarded(0, [&] {
    const int limit = FirstAnswer(first_limit, [&] {
      return GetAllLimitedUpDownFolderCount() + GetAllSecureFolderCount() +
             GetAllSharedFolderCount();
    });
    int count = 0;
    return SubFolderCountIsLarge(id, count, limit, recursive);
  });
}

int FolderAttributes::SubFolderCountIsLargeForCheckFolderAuthorityDownload(DWORD id,
                                                                           bool recursive) {
  static std::atomic<int> first_limit = -1;
  return m_db->Guarded(0, [&] {
    const int limit = FirstAnswer(first_limit, [&] {
      return GetAllUpOnlyFolderCount() + GetAllSecureFolderCount() + GetAllSharedFolderCount();
    });
    int count = 0;
    return SubFolderCountIsLarge(id, count, limit, recursive);
  });
}

}  // namespace vdstomgr::catalogue
