#include <unordered_set>

#include "vdstomgr/search/search_columns.h"
#include "vdstomgr/search/search_db_manager.h"
#include "vdstomgr/tables/folder_table.h"

using namespace vdstomgr;

namespace {

FolderTable FoldersOf(DatabaseSession& db) {
  return {db, "SearchFolderInfo",
          [](CDaoRecordset& row) { return kSearchFolderColumns.ReadFresh(row); },
          FolderTable::NamelessRoot::Nameless};
}

/// Where the way up from a folder ends.
struct Top {
  DWORD folder;  // the last folder before a root or an unknown parent
  DWORD above;   // that root, or 0xFFFFFFFF
};

Top TopOf(DatabaseSession& db, DWORD id) {
  const FolderTable folders = FoldersOf(db);
  std::unordered_set<DWORD> visited;
  for (Top top{id, kNoFolder}; visited.insert(top.folder).second; top.folder = top.above) {
    top.above = folders.FindParentID(top.folder);
    if (top.above == kNoFolder || IsRootFolder(top.above)) return top;
  }
  return {kNoFolder, kNoFolder};
}

}  // namespace

bool CRkSearchDBManager::AddFolder(const FolderArray& folders) {
  return m_db->AddRecords(folders, kSearchFolderColumns, "SELECT * FROM SearchFolderInfo");
}

bool CRkSearchDBManager::AddFolder(const FOLDERINFO& folder) {
  FolderArray one;
  one.Add(folder);
  return AddFolder(one);
}

bool CRkSearchDBManager::AddFolder(DWORD id, const char* name, DWORD parent,
                                   std::int32_t modified) {
  FOLDERINFO folder;
  folder.dwFolderID = id;
  folder.dwParentID = parent;
  folder.szModifiedDate = modified;
  return m_db->Guarded(false, [&] {
    Rows rows = m_db->Select("SELECT * FROM SearchFolderInfo");
    CRkDaoRecordset& row = rows->Recordset();
    row.AddNew();
    kSearchFolderColumns.Fill(row, folder);
    row.SetFieldValue("szFolderName", name);
    row.Update();
    return true;
  });
}

bool CRkSearchDBManager::DeleteFolder(const CDWordArray& ids) {
  return m_db->ForEach(ids, [&](DWORD id) {
    m_db->Run("DELETE FROM SearchPhotoMaster WHERE dwFolderID = %d", id);
    m_db->Run("DELETE FROM SearchFolderInfo WHERE dwFolderID = %d", id);
  });
}

bool CRkSearchDBManager::DeleteFolder(DWORD id) {
  return DeleteFolder(CDWordArray{id});
}

bool CRkSearchDBManager::ResetFolder() {
  return m_db->Execute(
      "DELETE FROM SearchFolderInfo WHERE dwFolderID <> %d AND dwFolderID <> %d "
      "AND dwFolderID <> %d",
      kPersonalRoot, kPublicRoot, kGuestRoot);
}

bool CRkSearchDBManager::GetFolderInfo(DWORD id, FOLDERINFO& folder) {
  return m_db->Guarded(false, [&] { return FoldersOf(*m_db).Find(id, folder); });
}

int CRkSearchDBManager::GetFolderInfo(const CDWordArray& ids, FolderArray& folders) {
  return m_db->Guarded(0, [&] {
    FOLDERINFO folder;
    for (const DWORD id : ids)
      if (FoldersOf(*m_db).Find(id, folder)) folders.Add(folder);
    return folders.GetSize();
  });
}

bool CRkSearchDBManager::GetParentFolderInfo(DWORD id, FOLDERINFO& parent) {
  if (IsReservedFolder(id)) return false;
  return m_db->Guarded(false, [&] { return FoldersOf(*m_db).FindParent(id, parent); });
}

DWORD CRkSearchDBManager::GetParentFolderID(DWORD id) {
  return m_db->Guarded(kNoFolder, [&] { return FoldersOf(*m_db).FindParentID(id); });
}

CString CRkSearchDBManager::GetFolderName(DWORD id) {
  return m_db->AskText("SELECT szFolderName FROM SearchFolderInfo WHERE dwFolderID = %d", id);
}

int CRkSearchDBManager::GetTotalNoOfFolders() {
  return m_db->AskInteger(0, "SELECT COUNT(*) as nCount FROM SearchFolderInfo");
}

// Below the personal root the answer is the folder, below the other two the root, on purpose.
DWORD CRkSearchDBManager::GetRootParentFolderID(DWORD id) {
  return m_db->Guarded(kNoFolder, [&] {
    const Top top = TopOf(*m_db, id);
    return top.above == kPersonalRoot || top.above == kNoFolder ? top.folder : top.above;
  });
}

int CRkSearchDBManager::GetFolderType(DWORD id) {
  return m_db->Guarded(-1, [&] { return int{SpaceTypeOfRoot(TopOf(*m_db, id).above)}; });
}

CString CRkSearchDBManager::GetServerPathName(DWORD id) {
  return m_db->Guarded(CString(), [&] {
    if (const CString* known = m_mapServerName.Find(id)) return *known;
    const CString path = FoldersOf(*m_db).PathName(id, FolderTable::RootName::Included);
    if (!path.IsEmpty()) m_mapServerName.SetAt(id, path);
    return path;
  });
}

void CRkSearchDBManager::InitServerNameCache() {
  m_db->GuardedOutsideCommit(true, [&] {
    m_mapServerName.RemoveAll();
    return true;
  });
}

int CRkSearchDBManager::GetFolderInfoMap(FolderMap& folders) {
  return m_db->Guarded(0, [&] {
    FolderArray all;
    FoldersOf(*m_db).Append(FoldersOf(*m_db).SelectAll(), all);
    for (const FOLDERINFO& folder : all) folders.SetAt(folder.dwFolderID, folder);
    return folders.GetCount();
  });
}

int CRkSearchDBManager::GetSubFolderInfoMap(SubFolderMap& map) {
  return m_db->Guarded(0, [&] {
    FoldersOf(*m_db).FillSubFolderMap(map);
    return map.GetCount();
  });
}

SubFolderMap* CRkSearchDBManager::GetSubFolderInfoMapCash() {
  m_db->Guarded([&] {
    if (m_bSubFolderMapMade) return;
    DeleteSubFolders(m_mapSubFolder);
    FoldersOf(*m_db).FillSubFolderMap(m_mapSubFolder);
    m_bSubFolderMapMade = true;
  });
  return &m_mapSubFolder;
}

int CRkSearchDBManager::GetFolderList(FolderArray& folders, DWORD parent) {
  return m_db->Guarded(0, [&] {
    FoldersOf(*m_db).Append(FoldersOf(*m_db).SelectChildrenByName(parent), folders);
    return folders.GetSize();
  });
}

int CRkSearchDBManager::GetFolderList(CDWordArray& ids, DWORD parent) {
  return m_db->Guarded(0, [&] {
    AppendRows(FoldersOf(*m_db).SelectChildrenByName(parent), ids, "dwFolderID");
    return ids.GetSize();
  });
}

int CRkSearchDBManager::GetSubFolder(DWORD parent, FolderArray& folders, bool recursive) {
  return m_db->Guarded(0, [&] {
    VisitedFolders visited;
    cGetSubFolder(parent, folders, visited, recursive);
    return folders.GetSize();
  });
}

int CRkSearchDBManager::GetSubFolder(DWORD parent, CDWordArray& ids, bool recursive) {
  return m_db->Guarded(0, [&] {
    FolderArray folders;
    GetSubFolder(parent, folders, recursive);
    for (const FOLDERINFO& folder : folders) ids.Add(folder.dwFolderID);
    return ids.GetSize();
  });
}

void CRkSearchDBManager::cGetSubFolder(DWORD parent, FolderArray& folders, VisitedFolders& visited,
                                       bool recursive) {
  m_db->Guarded([&] { FoldersOf(*m_db).AppendSubFolders(parent, folders, visited, recursive); });
}
