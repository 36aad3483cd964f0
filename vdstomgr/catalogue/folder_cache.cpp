#include <atomic>
#include <ranges>
#include <span>
#include <unordered_set>
#include <vector>

#include "vdstomgr/catalogue/folder_columns.h"
#include "vdstomgr/catalogue/photo_db_manager.h"
#include "vdstomgr/platform/report/report.h"
#include "vdstomgr/records/folder_ids.h"

using namespace vdstomgr;

namespace {

std::span<const FOLDERINFO> ChildrenIn(const SubFolderMap& map, DWORD parent) {
  const FolderArray* const* children = map.Find(parent);
  if (children == nullptr || *children == nullptr) return {};
  return {(*children)->begin(), (*children)->end()};
}

/// Goes through what is below `start`: each child, followed by its own children when `recursive`.
/// `children_of(id)` answers the children in order, `visit(child)` the id to go on below. A folder
/// is gone into once, so that a circle of parents ends the walk.
template <class ChildrenOf, class Visit>
void WalkSubFolders(DWORD start, bool recursive, ChildrenOf children_of, Visit visit) {
  struct Level {
    decltype(children_of(start)) children;
    std::ptrdiff_t next = 0;
  };
  std::unordered_set<DWORD> entered{start};
  std::vector<Level> levels;
  levels.push_back({children_of(start)});
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next == std::ranges::ssize(level.children)) {
      levels.pop_back();
      continue;
    }
    const DWORD id = visit(std::ranges::begin(level.children)[level.next++]);
    if (recursive && entered.insert(id).second) levels.push_back({children_of(id)});
  }
}

/// What `count` answered when it was first asked in this process.
template <class Count>
int FirstAnswer(std::atomic<int>& kept, Count count) {
  if (int none = -1; kept == none) kept.compare_exchange_strong(none, count());
  return kept;
}

}  // namespace

void vdstomgr::DeleteSubFolders(SubFolderMap& map) {
  for (const auto& [parent, children] : map) delete children;
  map.RemoveAll();
}

SubFolderMap* CRkPhotoDBManager::GetSubFolderInfoCashForTree() {
  Guarded([&] {
    if (m_nFolderChanged == 0) return;
    Trace("Create m_mapSubFolderDef for GetSubFolderInfoCashForTree");
    DeleteSubFolders(m_mapSubFolderDef);
    FillSubFolderMap(m_mapSubFolderDef);
    m_nFolderChanged = 0;
    Trace("m_mapSubFolderDef.Count = %d", m_mapSubFolderDef.GetCount());
  });
  return &m_mapSubFolderDef;
}

int CRkPhotoDBManager::GetSubFolderInfoForTree(SubFolderMap& map) {
  Guarded([&] { FillSubFolderMap(map); });
  return map.GetCount();
}

void CRkPhotoDBManager::FillSubFolderMap(SubFolderMap& map) {
  for (Row& row : Select("SELECT * FROM FolderInfo WHERE dwFolderID <> %d and dwFolderID <> %d "
                         "and dwFolderID <> %d order by dwParentID",
                         kPersonalRoot, kPublicRoot, kGuestRoot)) {
    const FOLDERINFO folder = ReadNamedFolder(row.Recordset());
    FolderArray*& children = map[folder.dwParentID];
    if (children == nullptr) children = new FolderArray;  // the map's owner deletes it
    children->Add(folder);
  }
}

int CRkPhotoDBManager::GetSubFolder(DWORD parent, FolderArray& folders, bool recursive,
                                    SubFolderMap* cache) {
  Guarded([&] {
    const SubFolderMap& map = cache != nullptr ? *cache : *GetSubFolderInfoCashForTree();
    WalkSubFolders(
        parent, recursive, [&](DWORD id) { return ChildrenIn(map, id); },
        [&](const FOLDERINFO& child) {
          folders.Add(child);
          return child.dwFolderID;
        });
  });
  return folders.GetSize();
}

int CRkPhotoDBManager::GetSubFolder(DWORD parent, CDWordArray& ids, bool recursive) {
  Guarded([&] {
    const SubFolderMap& map = *GetSubFolderInfoCashForTree();
    WalkSubFolders(
        parent, recursive, [&](DWORD id) { return ChildrenIn(map, id); },
        [&](const FOLDERINFO& child) {
          ids.Add(child.dwFolderID);
          return child.dwFolderID;
        });
  });
  return ids.GetSize();
}

int CRkPhotoDBManager::GetSubFolder2(DWORD parent, CDWordArray& ids, bool recursive) {
  Guarded([&] {
    const auto children_of = [&](DWORD id) {
      CDWordArray children;
      AppendIds(Select("SELECT dwFolderID FROM FolderInfo WHERE dwParentID = %d", id), "dwFolderID",
                children);
      return children;
    };
    WalkSubFolders(parent, recursive, children_of, [&](DWORD child) {
      ids.Add(child);
      return child;
    });
  });
  return ids.GetSize();
}

void CRkPhotoDBManager::cGetSubFolder(DWORD parent, FolderArray& folders,
                                      CMap<DWORD, DWORD, DWORD, DWORD>& visited, bool recursive) {
  const auto children_of = [&](DWORD id) {
    FolderArray children;
    if (visited.Find(id) == nullptr) {
      visited.SetAt(id, id);
      AppendNamedFolders(Select("SELECT * FROM FolderInfo WHERE dwParentID = %d "
                                "AND dwFolderID <> 0 ORDER BY szFolderName",
                                id),
                         children);
    }
    return children;
  };
  WalkSubFolders(parent, recursive, children_of, [&](const FOLDERINFO& child) {
    folders.Add(child);
    return child.dwFolderID;
  });
}

int CRkPhotoDBManager::SubFolderCountIsLarge(DWORD id, int& count, int limit, bool recursive,
                                             SubFolderMap* cache) {
  return Guarded(0, [&] {
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
      for (const FOLDERINFO& child : std::views::reverse(children))
        waiting.push_back(child.dwFolderID);
    }
    return 0;
  });
}

int CRkPhotoDBManager::SubFolderCountIsLargeForCheckFolderAuthorityEdit(DWORD id, bool recursive) {
  static std::atomic<int> first_limit = -1;
  return Guarded(0, [&] {
    const int limit = FirstAnswer(first_limit, [&] {
      return GetAllLimitedUpDownFolderCount() + GetAllSecureFolderCount() +
             GetAllSharedFolderCount();
    });
    int count = 0;
    return SubFolderCountIsLarge(id, count, limit, recursive);
  });
}

int CRkPhotoDBManager::SubFolderCountIsLargeForCheckFolderAuthorityDownload(DWORD id,
                                                                            bool recursive) {
  static std::atomic<int> first_limit = -1;
  return Guarded(0, [&] {
    const int limit = FirstAnswer(first_limit, [&] {
      return GetAllUpOnlyFolderCount() + GetAllSecureFolderCount() + GetAllSharedFolderCount();
    });
    int count = 0;
    return SubFolderCountIsLarge(id, count, limit, recursive);
  });
}
