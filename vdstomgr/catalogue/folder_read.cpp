#include <unordered_set>

#include "vdstomgr/catalogue/folder_steps.h"
#include "vdstomgr/catalogue/folders.h"
#include "vdstomgr/records/fixed_text.h"

namespace vdstomgr::catalogue {

namespace {

/// What the list form of GetFolderInfo does not read, on purpose.
void ForgetLaterFields(FOLDERINFO& folder) {
  const FOLDERINFO fresh;
  folder.nSpaceType = fresh.nSpaceType;
  folder.nCreatorSubIDType = fresh.nCreatorSubIDType;
  CopyToFixed(folder.szCreatorSubID, "");
  CopyToFixed(folder.szMemoID, "");
  folder.bAllowComment = fresh.bAllowComment;
  folder.nCommentCount = fresh.nCommentCount;
}

/// Appends the rows of a query; what was appended before a failure counts.
int AppendFolders(DatabaseSession& db, FolderArray& folders, auto select) {
  db.Guarded([&] { FoldersOf(db).Append(select(), folders); });
  return folders.GetSize();
}

}  // namespace

bool Folders::GetFolderInfo(DWORD id, FOLDERINFO& folder) {
  return m_db->Guarded(false, [&] {
    if (!FoldersOf(*m_db).Find(id, folder)) return false;
    if (folder.nSpaceType == -1) {  // written back also when the root tells nothing
      folder.nSpaceType = SpaceTypeOfRoot(GetRootParentFolderID(id));
      SetFolderInfo(folder);
    }
    return true;
  });
}

int Folders::GetFolderInfo(const CDWordArray& ids, FolderArray& folders) {
  m_db->Guarded([&] {
    FOLDERINFO folder;
    for (const DWORD id : ids) {
      if (!FoldersOf(*m_db).Find(id, folder)) continue;
      ForgetLaterFields(folder);
      folders.Add(folder);
    }
  });
  return folders.GetSize();
}

bool Folders::GetParentFolderInfo(DWORD id, FOLDERINFO& parent) {
  return m_db->Guarded(false, [&] { return FoldersOf(*m_db).FindParent(id, parent); });
}

CString Folders::GetFolderName(DWORD id) {
  return m_db->AskText("SELECT szFolderName FROM FolderInfo WHERE dwFolderID = %d", id);
}

CString Folders::GetFolderDesc(DWORD id) {
  FOLDERINFO folder;
  return GetFolderInfo(id, folder) ? folder.szDesc : "";
}

DWORD Folders::GetParentFolderID(DWORD id) {
  return m_db->Guarded(kNoFolder, [&] { return FoldersOf(*m_db).FindParentID(id); });
}

DWORD Folders::GetSubFolderID(DWORD parent, const char* name) {
  return m_db->Guarded(kNoFolder, [&] { return FoldersOf(*m_db).FindSubFolder(parent, name); });
}

DWORD Folders::GetRootParentFolderID(DWORD id) {
  return m_db->Guarded(kNoFolder, [&] {
    std::unordered_set<DWORD> visited;
    for (DWORD current = id; visited.insert(current).second;) {
      const DWORD parent = FoldersOf(*m_db).FindParentID(current);
      if (IsRootFolder(parent)) return parent;
      if (parent == kNoFolder) return current;
      current = parent;
    }
    return kNoFolder;
  });
}

DWORD Folders::GetFolderType(DWORD id) {
  FOLDERINFO folder;
  return GetFolderInfo(id, folder) ? static_cast<DWORD>(folder.nSpaceType) : kNoFolder;
}

DWORD Folders::GetFolderType(const char* path) {
  if (path == nullptr) return kNoFolder;
  const DWORD id = GetFolderIDFromPath(path);
  return id == kNoFolder ? kNoFolder : GetFolderType(id);
}

bool Folders::FolderExistsInDB(DWORD id) {
  return m_db->AskExists("SELECT * FROM FolderInfo WHERE dwFolderID = %d", id);
}

int Folders::GetFolderList(FolderArray& folders, DWORD parent) {
  return AppendFolders(*m_db, folders,
                       [&] { return FoldersOf(*m_db).SelectChildrenByName(parent); });
}

int Folders::GetFolderList(CDWordArray& ids, DWORD parent) {
  m_db->Guarded(
      [&] { AppendRows(FoldersOf(*m_db).SelectChildrenByName(parent), ids, "dwFolderID"); });
  return ids.GetSize();
}

int Folders::GetSubFolderInfo(DWORD parent, FolderArray& folders) {
  return AppendFolders(*m_db, folders, [&] {
    return m_db->Select("SELECT * FROM FolderInfo WHERE dwParentID = %d ", parent);
  });
}

int Folders::GetSubFolderCountFromDB(DWORD parent) {
  return m_db->AskInteger(0, "SELECT Count(*) as Count FROM FolderInfo WHERE dwParentID = %d",
                          parent);
}

int Folders::GetAllFolderList(FolderArray& folders) {
  return AppendFolders(*m_db, folders, [&] { return FoldersOf(*m_db).SelectAll(); });
}

int Folders::GetAllFolderListForSearch(FolderArray& folders) {
  m_db->AskRecords(folders, kFolderColumns, "SELECT * FROM FolderInfo");
  return folders.GetSize();
}

int Folders::GetFolderInfoForTree(FolderMap& folders) {
  FolderArray all;
  GetAllFolderList(all);
  for (const FOLDERINFO& folder : all) folders.SetAt(folder.dwFolderID, folder);
  return folders.GetCount();
}

int Folders::GetFolderCount() {
  return m_db->AskInteger(0, "SELECT COUNT(*) as nCount FROM FolderInfo");
}

}  // namespace vdstomgr::catalogue
