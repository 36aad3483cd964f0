#include "tools/vdsto/library/folder_tree.h"

#include <array>

namespace vdsto {
namespace {

constexpr std::array kRoots{vdstomgr::kPersonalRoot, vdstomgr::kPublicRoot, vdstomgr::kGuestRoot};

class TreeReader {
 public:
  explicit TreeReader(Library& library) {
    vdstomgr::CountArray counts;
    library.Call([&](auto& catalogue) { return catalogue.GetPhotoCountInFolders(counts); });
    for (const COUNTINFOLDER& count : counts) counts_[count.dwFolderID] = count.Count;
    library.Call([&](auto& catalogue) { return AddBelow(catalogue, vdstomgr::kNoFolder); });
  }

  TreeFolder Read(const FOLDERINFO& folder) const {
    TreeFolder result{folder.dwFolderID, folder.szFolderName, 0, {}};
    if (const auto count = counts_.find(folder.dwFolderID); count != counts_.end())
      result.photos = count->second;
    const auto children = children_.find(folder.dwFolderID);
    if (children == children_.end()) return result;
    for (const FOLDERINFO& child : children->second) result.folders.push_back(Read(child));
    return result;
  }

  const vdstomgr::FolderArray& TopLevel() { return children_[vdstomgr::kNoFolder]; }

 private:
  /// Folders in a circle of parents are below nothing, so this ends.
  bool AddBelow(CRkPhotoDBManager& catalogue, uint32_t parent) {
    vdstomgr::FolderArray folders;
    catalogue.GetFolderList(folders, parent);
    for (const FOLDERINFO& folder : folders) AddBelow(catalogue, folder.dwFolderID);
    if (!folders.IsEmpty()) children_.emplace(parent, std::move(folders));
    return true;
  }

  std::map<uint32_t, int> counts_;
  std::map<uint32_t, vdstomgr::FolderArray> children_;
};

}  // namespace

int TreeFolder::AllPhotos() const {
  int sum = photos;
  for (const TreeFolder& folder : folders) sum += folder.AllPhotos();
  return sum;
}

std::vector<TreeFolder> ReadFolderTree(Library& library) {
  TreeReader reader(library);
  std::vector<TreeFolder> roots;
  for (const uint32_t root : kRoots) {
    for (const FOLDERINFO& folder : reader.TopLevel()) {
      if (folder.dwFolderID == root) roots.push_back(reader.Read(folder));
    }
  }
  return roots;
}

}  // namespace vdsto
