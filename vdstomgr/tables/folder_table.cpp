#include "vdstomgr/tables/folder_table.h"

#include <unordered_set>
#include <vector>

#include "vdstomgr/records/fixed_text.h"
#include "vdstomgr/tables/folder_columns.h"
#include "vdstomgr/tables/tree_walk.h"

namespace vdstomgr {

namespace {

/// The names, listed from the folder upwards, as a path from the top downwards.
CString JoinUpwards(const std::vector<CString>& names) {
  CString path;
  for (auto name = names.rbegin(); name != names.rend(); ++name) {
    if (name != names.rbegin()) path += '/';
    path += *name;
  }
  return path;
}

}  // namespace

void FillRootName(FOLDERINFO& folder) {
  if (folder.szFolderName[0] == '\0' && IsRootFolder(folder.dwFolderID))
    CopyToFixed(folder.szFolderName, RootFolderName(folder.dwFolderID));
}

bool FolderTable::Find(DWORD id, FOLDERINFO& folder) const {
  Rows rows = session_.Select("SELECT * FROM %s WHERE dwFolderID = %d", table_, id);
  if (!rows.HasRow()) return false;
  folder = read_(rows->Recordset());
  return true;
}

bool FolderTable::FindParent(DWORD id, FOLDERINFO& parent) const {
  Rows rows = session_.Select(
      "SELECT dwParentID, dwFolderID, szFolderName FROM %s "
      "WHERE dwFolderID = (SELECT dwParentID FROM %s WHERE dwFolderID = %d)",
      table_, table_, id);
  if (!rows.HasRow()) return false;
  const FOLDERINFO row = kFolderNameColumns.ReadFresh(rows->Recordset());
  parent.dwParentID = row.dwParentID;
  parent.dwFolderID = row.dwFolderID;
  CopyToFixed(parent.szFolderName, row.szFolderName);
  if (nameless_root_ == NamelessRoot::FixedName) FillRootName(parent);
  return true;
}

DWORD FolderTable::FindParentID(DWORD id) const {
  return FirstId(session_.Select("SELECT dwParentID FROM %s WHERE dwFolderID = %d", table_, id));
}

DWORD FolderTable::FindSubFolder(DWORD parent, const char* name) const {
  return FirstId(
      session_.Select("SELECT dwFolderID FROM %s WHERE dwParentID = %d and szFolderName = '%s'",
                      table_, parent, name));
}

void FolderTable::Append(Rows rows, FolderArray& folders) const {
  for (Row& row : rows) folders.Add(read_(row.Recordset()));
}

Rows FolderTable::SelectAll() const {
  return session_.Select("SELECT * FROM %s", table_);
}

Rows FolderTable::SelectChildrenByName(DWORD parent) const {
  return session_.Select("SELECT * FROM %s WHERE dwParentID = %d ORDER BY szFolderName", table_,
                         parent);
}

void FolderTable::AppendSubFolders(DWORD parent, FolderArray& folders, VisitedFolders& visited,
                                   bool recursive) const {
  const auto children_of = [&](DWORD id) {
    FolderArray children;
    if (visited.Find(id) == nullptr) {
      visited.SetAt(id, id);
      Append(session_.Select("SELECT * FROM %s WHERE dwParentID = %d AND dwFolderID <> 0 "
                             "ORDER BY szFolderName",
                             table_, id),
             children);
    }
    return children;
  };
  WalkTree(parent, recursive, children_of, [&](const FOLDERINFO& child) {
    folders.Add(child);
    return child.dwFolderID;
  });
}

void FolderTable::FillSubFolderMap(SubFolderMap& map) const {
  for (Row& row : session_.Select("SELECT * FROM %s WHERE dwFolderID <> %d and dwFolderID <> %d "
                                  "and dwFolderID <> %d order by dwParentID",
                                  table_, kPersonalRoot, kPublicRoot, kGuestRoot)) {
    const FOLDERINFO folder = read_(row.Recordset());
    FolderArray*& children = map[folder.dwParentID];
    if (children == nullptr) children = new FolderArray;  // the map's owner deletes it
    children->Add(folder);
  }
}

CString FolderTable::PathName(DWORD id, RootName root_name) const {
  FOLDERINFO folder;
  if (!Find(id, folder)) return {};
  std::vector<CString> names{folder.szFolderName};
  std::unordered_set<DWORD> visited{id};
  while (FindParent(folder.dwFolderID, folder)) {
    if (!visited.insert(folder.dwFolderID).second) return {};
    if (root_name == RootName::LeftOut && IsRootFolder(folder.dwFolderID)) {
      names.emplace_back();
      break;
    }
    names.emplace_back(folder.szFolderName);
  }
  return JoinUpwards(names);
}

}  // namespace vdstomgr
