#include <span>
#include <unordered_set>
#include <vector>

#include "vdstomgr/catalogue/folder_steps.h"
#include "vdstomgr/catalogue/folders.h"
#include "vdstomgr/platform/report/report.h"
#include "vdstomgr/tables/tree_walk.h"

namespace vdstomgr::catalogue {

namespace {

std::span<const FOLDERINFO> ChildrenIn(const SubFolderMap& map, DWORD parent) {
  const FolderArray* const* children = map.Find(parent);
  if (children == nullptr || *children == nullptr) return {};
  return {(*children)->begin(), (*children)->end()};
}

}  // namespace

Folders::~Folders() {
  DeleteSubFolders(m_mapSubFolderDef);
}

SubFolderMap* Folders::GetSubFolderInfoCashForTree() {
  m_db->Guarded([&] {
    if (!m_bFolderChanged) return;
    Trace("Create m_mapSubFolderDef for GetSubFolderInfoCashForTree");
    DeleteSubFolders(m_mapSubFolderDef);
    FoldersOf(*m_db).FillSubFolderMap(m_mapSubFolderDef);
    m_bFolderChanged = false;
    Trace("m_mapSubFolderDef.Count = %d", m_mapSubFolderDef.GetCount());
  });
  return &m_mapSubFolderDef;
}

int Folders::GetSubFolderInfoForTree(SubFolderMap& map) {
  m_db->Guarded([&] { FoldersOf(*m_db).FillSubFolderMap(map); });
  return map.GetCount();
}

int Folders::GetSubFolder(DWORD parent, FolderArray& folders, bool recursive, SubFolderMap* cache) {
  m_db->Guarded([&] {
    const SubFolderMap& map = cache != nullptr ? *cache : *GetSubFolderInfoCashForTree();
    WalkTree(
        parent, recursive, [&](DWORD id) { return ChildrenIn(map, id); },
        [&](const FOLDERINFO& child) {
          folders.Add(child);
          return child.dwFolderID;
        });
  });
  return folders.GetSize();
}

int Folders::GetSubFolder(DWORD parent, CDWordArray& ids, bool recursive) {
  m_db->Guarded([&] {
    const SubFolderMap& map = *GetSubFolderInfoCashForTree();
    WalkTree(
        parent, recursive, [&](DWORD id) { return ChildrenIn(map, id); },
        [&](const FOLDERINFO& child) {
          ids.Add(child.dwFolderID);
          return child.dwFolderID;
        });
  });
  return ids.GetSize();
}

int Folders::GetSubFolder2(DWORD parent, CDWordArray& ids, bool recursive) {
  m_db->Guarded([&] {
    const auto children_of = [&](DWORD id) {
      CDWordArray children;
      AppendRows(m_db->Select("SELECT dwFolderID FROM FolderInfo WHERE dwParentID = %d", id),
                 children);
      return children;
    };
    WalkTree(parent, recursive, children_of, [&](DWORD child) {
      ids.Add(child);
      return child;
    });
  });
  return ids.GetSize();
}

void Folders::cGetSubFolder(DWORD parent, FolderArray& folders, VisitedFolders& visited,
                            bool recursive) {
  m_db->Guarded([&] { FoldersOf(*m_db).AppendSubFolders(parent, folders, visited, recursive); });
}

int Folders::SubFolderCountIsLarge(DWORD id, int& count, int limit, bool recursive,
                                   SubFolderMap* cache) {
  return m_db->Guarded(0, [&] {
    const SubFolderMap& map = cache != nullptr ? *cache : *GetSubFolderInfoCashForTree();
    std::unordered_set<DWORD> entered;
    for (std::vector<DWORD> waiting{id}; !waiting.empty();) {
      const DWORD parent = waiting.back();
      waiting.pop_back();
      const auto children = ChildrenIn(map, parent);
      if (children.empty()) continue;
      if (!entered.insert(parent).second) return 1;
      count += static_cast<int>(children.size());
      if (count > limit) return 1;
      if (!recursive) return 0;
      for (auto child = children.rbegin(); child != children.rend(); ++child)
        waiting.push_back(child->dwFolderID);
    }
    return 0;
  });
}

}  // namespace vdstomgr::catalogue
