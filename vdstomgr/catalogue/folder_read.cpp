#include <unordered_set>

#include "vdstomgr/catalogue/folder_columns.h"
#include "vdstomgr/catalogue/photo_db_manager.h"
#include "vdstomgr/records/fixed_text.h"
#include "vdstomgr/records/folder_ids.h"

using namespace vdstomgr;

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

}  // namespace

bool CRkPhotoDBManager::FindFolder(DWORD id, FOLDERINFO& folder) {
  Rows rows = Select("SELECT * FROM FolderInfo WHERE dwFolderID = %d", id);
  if (!rows.HasRow()) return false;
  folder = ReadNamedFolder(rows->Recordset());
  return true;
}

bool CRkPhotoDBManager::GetFolderInfo(DWORD id, FOLDERINFO& folder) {
  return Guarded(false, [&] {
    if (!FindFolder(id, folder)) return false;
    if (folder.nSpaceType == -1) {  // written back also when the root tells nothing
      folder.nSpaceType = SpaceTypeOfRoot(GetRootParentFolderID(id));
      SetFolderInfo(folder);
    }
    return true;
  });
}

int CRkPhotoDBManager::GetFolderInfo(const CDWordArray& ids, FolderArray& folders) {
  Guarded([&] {
    FOLDERINFO folder;
    for (const DWORD id : ids) {
      if (!FindFolder(id, folder)) continue;
      ForgetLaterFields(folder);
      folders.Add(folder);
    }
  });
  return folders.GetSize();
}

bool CRkPhotoDBManager::GetParentFolderInfo(DWORD id, FOLDERINFO& parent) {
  return Guarded(false, [&] { return FindParent(id, parent); });
}

bool CRkPhotoDBManager::FindParent(DWORD id, FOLDERINFO& parent) {
  Rows rows = Select(
      "SELECT dwParentID, dwFolderID, szFolderName FROM FolderInfo "
      "WHERE dwFolderID = (SELECT dwParentID FROM FolderInfo WHERE dwFolderID = %d)",
      id);
  if (!rows.HasRow()) return false;
  parent.dwParentID = rows->Id("dwParentID");
  parent.dwFolderID = rows->Id("dwFolderID");
  CopyToFixed(parent.szFolderName, rows->Text("szFolderName"));
  FillRootName(parent);
  return true;
}

CString CRkPhotoDBManager::GetFolderName(DWORD id) {
  return Guarded(CString(), [&] {
    return FirstText(Select("SELECT szFolderName FROM FolderInfo WHERE dwFolderID = %d", id),
                     "szFolderName");
  });
}

CString CRkPhotoDBManager::GetFolderDesc(DWORD id) {
  FOLDERINFO folder;
  return GetFolderInfo(id, folder) ? folder.szDesc : "";
}

DWORD CRkPhotoDBManager::GetParentFolderID(DWORD id) {
  return Guarded(kNoFolder, [&] { return FindParentID(id); });
}

DWORD CRkPhotoDBManager::FindParentID(DWORD id) {
  return FirstId(Select("SELECT dwParentID FROM FolderInfo WHERE dwFolderID = %d", id),
                 "dwParentID");
}

DWORD CRkPhotoDBManager::GetSubFolderID(DWORD parent, const char* name) {
  return Guarded(kNoFolder, [&] { return FindSubFolder(parent, name); });
}

DWORD CRkPhotoDBManager::FindSubFolder(DWORD parent, const char* name) {
  return FirstId(Select("SELECT dwFolderID FROM FolderInfo "
                        "WHERE dwParentID = %d and szFolderName = '%s'",
                        parent, Quoted(name)),
                 "dwFolderID");
}

DWORD CRkPhotoDBManager::GetRootParentFolderID(DWORD id) {
  return Guarded(kNoFolder, [&] {
    std::unordered_set<DWORD> visited;
    for (DWORD current = id; visited.insert(current).second;) {
      const DWORD parent = FindParentID(current);
      if (IsRootFolder(parent)) return parent;
      if (parent == kNoFolder) return current;
      current = parent;
    }
    return kNoFolder;
  });
}

DWORD CRkPhotoDBManager::GetFolderType(DWORD id) {
  FOLDERINFO folder;
  return GetFolderInfo(id, folder) ? static_cast<DWORD>(folder.nSpaceType) : kNoFolder;
}

DWORD CRkPhotoDBManager::GetFolderType(const char* path) {
  if (path == nullptr) return kNoFolder;
  const DWORD id = GetFolderIDFromPath(path);
  return id == kNoFolder ? kNoFolder : GetFolderType(id);
}

bool CRkPhotoDBManager::FolderExistsInDB(DWORD id) {
  return Guarded(false,
                 [&] { return Exists("SELECT * FROM FolderInfo WHERE dwFolderID = %d", id); });
}

int CRkPhotoDBManager::GetFolderList(FolderArray& folders, DWORD parent) {
  Guarded([&] {
    AppendNamedFolders(
        Select("SELECT * FROM FolderInfo WHERE dwParentID = %d ORDER BY szFolderName", parent),
        folders);
  });
  return folders.GetSize();
}

int CRkPhotoDBManager::GetFolderList(CDWordArray& ids, DWORD parent) {
  Guarded([&] {
    AppendIds(
        Select("SELECT * FROM FolderInfo WHERE dwParentID = %d ORDER BY szFolderName", parent),
        "dwFolderID", ids);
  });
  return ids.GetSize();
}

int CRkPhotoDBManager::GetSubFolderInfo(DWORD parent, FolderArray& folders) {
  Guarded([&] {
    AppendNamedFolders(Select("SELECT * FROM FolderInfo WHERE dwParentID = %d ", parent), folders);
  });
  return folders.GetSize();
}

int CRkPhotoDBManager::GetSubFolderCountFromDB(DWORD parent) {
  return Guarded(0, [&] {
    return FirstInteger(
        Select("SELECT Count(*) as Count FROM FolderInfo WHERE dwParentID = %d", parent), "Count");
  });
}

int CRkPhotoDBManager::GetAllFolderList(FolderArray& folders) {
  Guarded([&] { AppendNamedFolders(Select("SELECT * FROM FolderInfo"), folders); });
  return folders.GetSize();
}

int CRkPhotoDBManager::GetAllFolderListForSearch(FolderArray& folders) {
  Guarded([&] {
    for (Row& row : Select("SELECT * FROM FolderInfo")) folders.Add(ReadFolder(row.Recordset()));
  });
  return folders.GetSize();
}

int CRkPhotoDBManager::GetFolderInfoForTree(FolderMap& folders) {
  Guarded([&] {
    for (Row& row : Select("SELECT * FROM FolderInfo"))
      folders.SetAt(row.Id("dwFolderID"), ReadNamedFolder(row.Recordset()));
  });
  return folders.GetCount();
}
