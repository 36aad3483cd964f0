#include "vdstomgr/catalogue/folder_steps.h"
#include "vdstomgr/catalogue/folders.h"
#include "vdstomgr/platform/utility/utility_lib.h"

namespace vdstomgr::catalogue {

namespace {

constexpr int kMaxCandidates = 10'000;

}  // namespace

DWORD Folders::GetFolderIDFromPath(const char* path) {
  return m_db->Guarded(kNoFolder, [&] {
    CStringArray parts;
    CUtilityLib::SplitStringByToken(path, '/', parts);
    DWORD id = kNoFolder;
    for (const CString& part : parts) {
      if (part.IsEmpty()) continue;
      id = FoldersOf(*m_db).FindSubFolder(id, part);
      if (id == kNoFolder) break;
    }
    return id;
  });
}

CString Folders::GetServerPathName(DWORD id) {
  return m_db->Guarded(
      CString(), [&] { return FoldersOf(*m_db).PathName(id, FolderTable::RootName::Included); });
}

CString Folders::GetServerPathName2(DWORD id) {
  if (IsRootFolder(id)) return "/";
  return m_db->Guarded(
      CString(), [&] { return FoldersOf(*m_db).PathName(id, FolderTable::RootName::LeftOut); });
}

CString Folders::GetNewSubFolderName(const char* name, DWORD parent) {
  return m_db->Guarded(CString(), [&]() -> CString {
    const FolderTable folders = FoldersOf(*m_db);
    if (folders.FindSubFolder(parent, name) == kNoFolder) return name;
    CString candidate;
    for (int n = 0; n < kMaxCandidates; ++n) {  // the first alternative is numbered 0, on purpose
      candidate.Format("%s (%d)", ViewOf(name).data(), n);
      if (folders.FindSubFolder(parent, candidate) == kNoFolder) return candidate;
    }
    return {};
  });
}

}  // namespace vdstomgr::catalogue
