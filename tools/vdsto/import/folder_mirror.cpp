#include "tools/vdsto/import/folder_mirror.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "tools/vdsto/library/folder_changes.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

/// How many folders with photos are asked where a top-level folder comes from.
constexpr int kFoldersAsked = 8;
constexpr int kTriesForAnId = 1000;

/// The name that a real folder gets in the catalogue.
std::string CatalogueName(const std::string& source) {
  const std::string name = Composed(LastComponent(source));
  return name.empty() ? "root" : FirstCharacters(name, 128);
}

/// Is `name` the catalogue's answer to a sibling that had `wanted` already: "wanted (3)"?
bool IsNumbered(std::string_view name, std::string_view wanted) {
  if (name.size() < wanted.size() + 4 || !name.starts_with(wanted) || !name.ends_with(')'))
    return false;
  const std::string_view tail = name.substr(wanted.size());
  return tail.starts_with(" (") && std::all_of(tail.begin() + 2, tail.end() - 1, ::isdigit);
}

bool IsFolder(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::is_directory(path, ignored);
}

std::string Ancestor(std::string path, int levels) {
  while (levels-- > 0) path = ParentOf(path);
  return path;
}

}  // namespace

FolderMirror::FolderMirror(Library& library) : library_(library) {
  ReadFolders();
  for (const FolderId top : ChildrenOf(vdstomgr::kPersonalRoot)) {
    if (const std::string source = MainSource(top, kFoldersAsked); !source.empty()) {
      AddRoot(source, top);
    }
  }
}

/// A folder that the user has filled with photos of a mirrored one does not take its place.
void FolderMirror::AddRoot(const std::string& source, FolderId folder) {
  const auto same = std::find_if(roots_.begin(), roots_.end(),
                                 [&](const auto& root) { return root.first == source; });
  if (same == roots_.end()) {
    roots_.emplace_back(source, folder);
  } else if (folders_.at(folder).name == CatalogueName(source)) {
    same->second = folder;
  }
}

void FolderMirror::ReadFolders() {
  for (const FOLDERINFO& folder : library_.AllFolders())
    Remember(folder.dwFolderID, folder.dwParentID, folder.szFolderName);
}

void FolderMirror::Remember(FolderId id, FolderId parent, std::string name) {
  if (!folders_.insert_or_assign(id, Folder{parent, std::move(name)}).second) return;
  children_.emplace(parent, id);
  if (static_cast<int32_t>(id) > 0) next_id_ = std::max(next_id_, id + 1);
}

std::vector<FolderId> FolderMirror::ChildrenOf(FolderId parent) const {
  std::vector<FolderId> result;
  const auto [first, last] = children_.equal_range(parent);
  for (auto child = first; child != last; ++child) result.push_back(child->second);
  std::sort(result.begin(), result.end());
  return result;
}

/// One vote per photo: photos that the user has moved here from elsewhere are outvoted.
std::string FolderMirror::MainSource(FolderId folder, int folders_asked) {
  std::map<std::string, int> votes;
  CountSources(folder, 0, folders_asked, votes);
  const auto fewer = [](const auto& a, const auto& b) { return a.second < b.second; };
  const auto winner = std::max_element(votes.begin(), votes.end(), fewer);
  return winner == votes.end() ? std::string() : winner->first;
}

void FolderMirror::CountSources(FolderId folder, int depth, int& folders_left,
                                std::map<std::string, int>& votes) {
  const auto rows = RowsLocked(folder);
  for (const std::string& source : rows->SourceFolders()) ++votes[Ancestor(source, depth)];
  if (!rows->SourceFolders().empty()) --folders_left;
  for (const FolderId child : ChildrenOf(folder)) {
    if (folders_left <= 0) return;
    CountSources(child, depth + 1, folders_left, votes);
  }
}

std::optional<FolderId> FolderMirror::Find(const std::string& source) {
  const std::lock_guard lock(mutex_);
  return FindLocked(source);
}

FolderId FolderMirror::Ensure(const std::string& source, const std::string& import_root) {
  const std::lock_guard lock(mutex_);
  return EnsureLocked(source, import_root);
}

FolderId FolderMirror::Follow(const std::string& old_source, const std::string& source,
                              const std::string& import_root) {
  const std::lock_guard lock(mutex_);
  Adopt(old_source, source, import_root);
  return EnsureLocked(source, import_root);
}

std::shared_ptr<const FolderRows> FolderMirror::Rows(FolderId folder) {
  const std::lock_guard lock(mutex_);
  return RowsLocked(folder);
}

void FolderMirror::Release(FolderId folder) {
  const std::lock_guard lock(mutex_);
  rows_.erase(folder);
}

uint64_t FolderMirror::CreatedFolders() const {
  const std::lock_guard lock(mutex_);
  return created_;
}

/// A top-level folder that the user has filled with photos of a mirrored one does not stand for it.
std::optional<FolderId> FolderMirror::FindLocked(const std::string& source) {
  if (const auto known = mirrored_.find(source); known != mirrored_.end()) return known->second;
  std::optional<FolderId> found;
  if (IsBelowSomeRoot(source)) {
    if (const auto parent = FindLocked(ParentOf(source))) found = FindChild(*parent, source);
  }
  for (const auto& [root, id] : roots_) {
    if (!found && root == source) found = id;
  }
  if (found) Bind(source, *found);
  return found;
}

void FolderMirror::Bind(const std::string& source, FolderId folder) {
  mirrored_.emplace(source, folder);
  taken_.insert(folder);
}

bool FolderMirror::IsBelowSomeRoot(const std::string& source) const {
  return std::any_of(roots_.begin(), roots_.end(),
                     [&](const auto& root) { return IsBelow(source, root.first); });
}

/// Siblings whose names differ in case or composition only have numbered names here; their photos
/// tell them apart.
std::optional<FolderId> FolderMirror::FindChild(FolderId parent, const std::string& source) {
  const std::string wanted = CatalogueName(source);
  std::optional<FolderId> untold;
  std::vector<FolderId> others;
  for (const FolderId child : ChildrenOf(parent)) {
    const std::string& name = folders_.at(child).name;
    if (name != wanted && !IsNumbered(name, wanted)) {
      others.push_back(child);
      continue;
    }
    const Evidence evidence = Judge(child, source, 0);
    if (evidence == Evidence::kMatches) return child;
    if (evidence == Evidence::kNone && name == wanted && !IsTaken(child)) untold = child;
  }
  return untold ? untold : FindRenamed(others, source);
}

std::optional<FolderId> FolderMirror::FindRenamed(const std::vector<FolderId>& folders,
                                                  const std::string& source) {
  for (const FolderId folder : folders) {
    if (!IsTaken(folder) && MainSource(folder, 1) == source) return folder;
  }
  return std::nullopt;
}

bool FolderMirror::IsTaken(FolderId folder) const {
  return taken_.contains(folder);
}

FolderMirror::Evidence FolderMirror::Judge(FolderId folder, const std::string& source, int depth) {
  Evidence evidence = Evidence::kNone;
  const auto rows = RowsLocked(folder);
  for (const std::string& photo_source : rows->SourceFolders()) {
    if (Ancestor(photo_source, depth) == source) return Evidence::kMatches;
    evidence = Evidence::kOther;
  }
  for (const FolderId child : ChildrenOf(folder)) {
    const Evidence below = Judge(child, source, depth + 1);
    if (below == Evidence::kMatches) return below;
    evidence = std::max(evidence, below);
  }
  return evidence;
}

FolderId FolderMirror::EnsureLocked(const std::string& source, const std::string& import_root) {
  if (const auto found = FindLocked(source)) return *found;
  const bool is_top = source == import_root && !IsBelowSomeRoot(source);
  const FolderId parent =
      is_top ? vdstomgr::kPersonalRoot : EnsureLocked(ParentOf(source), import_root);
  // An import that was killed may have left the folder without a photo.
  const auto left_over = FindChild(parent, source);
  const FolderId id = left_over ? *left_over : Create(parent, source);
  if (is_top) roots_.emplace_back(source, id);
  Bind(source, id);
  return id;
}

/// Adding never replaces a folder that another process gave the same id meanwhile, so the row is
/// read back.
FolderId FolderMirror::Create(FolderId parent, const std::string& source) {
  const std::string wanted = CatalogueName(source);
  FOLDERINFO folder;
  folder.dwParentID = parent;
  folder.nSpaceType = 0;
  for (int tries = 0; tries < kTriesForAnId; ++tries) {
    const CString name = library_.Call(
        [&](auto& catalogue) { return catalogue.GetNewSubFolderName(wanted.c_str(), parent); });
    if (name.IsEmpty()) break;
    std::strncpy(folder.szFolderName, name, sizeof(folder.szFolderName) - 1);
    folder.dwFolderID = next_id_++;
    FOLDERINFO stored;
    library_.Call([&](auto& catalogue) {
      folder.szModifiedDate = folder.szIModifiedDate = catalogue.GetTime();
      return catalogue.AddFolderInfo(folder) && catalogue.GetFolderInfo(folder.dwFolderID, stored);
    });
    const bool is_ours =
        stored.dwParentID == parent && std::strcmp(stored.szFolderName, folder.szFolderName) == 0;
    if (!is_ours) {
      ReadFolders();
      continue;
    }
    library_.CallSearch([&](auto& copy) { copy.FolderAdded(folder); });
    Remember(folder.dwFolderID, parent, folder.szFolderName);
    ++created_;
    return folder.dwFolderID;
  }
  throw ToolError(ExitCode::kCatalogue, "no free folder name or number for " + Printable(source));
}

/// The folders above come first, because one that was renamed takes all below it along.
void FolderMirror::Adopt(const std::string& old_source, const std::string& source,
                         const std::string& import_root) {
  if (old_source == source || FindLocked(source) || IsFolder(old_source)) return;
  const auto folder = FindLocked(old_source);
  if (!folder || vdstomgr::IsReservedFolder(*folder)) return;
  const bool was_root = IsRoot(old_source, *folder);
  if (source != import_root && !was_root)
    Adopt(ParentOf(old_source), ParentOf(source), import_root);
  const FolderId parent = was_root || source == import_root
                              ? folders_.at(*folder).parent
                              : EnsureLocked(ParentOf(source), import_root);
  Relocate(*folder, parent, old_source, source);
  if (was_root) roots_.emplace_back(source, *folder);
  Bind(source, *folder);
}

void FolderMirror::Relocate(FolderId id, FolderId parent, const std::string& old_source,
                            const std::string& source) {
  Folder& folder = folders_.at(id);
  const std::string old_name = CatalogueName(old_source);
  const bool is_own_name = folder.name == old_name || IsNumbered(folder.name, old_name);
  const std::string name = is_own_name ? CatalogueName(source) : folder.name;
  const auto old_parent = FindLocked(ParentOf(old_source));
  const bool is_own_place = IsRoot(old_source, id) || !old_parent || *old_parent == folder.parent;
  if (!is_own_place || IsInOrBelow(parent, id)) parent = folder.parent;
  if (parent == folder.parent && name == folder.name) return;
  folder.name = RelocateFolder(library_, id, parent, name);
  if (parent == folder.parent) return;
  const auto [first, last] = children_.equal_range(folder.parent);
  children_.erase(std::find_if(first, last, [&](const auto& child) { return child.second == id; }));
  children_.emplace(parent, id);
  folder.parent = parent;
}

bool FolderMirror::IsInOrBelow(FolderId folder, FolderId above) const {
  for (auto found = folders_.find(folder); found != folders_.end();
       found = folders_.find(found->second.parent)) {
    if (found->first == above) return true;
    if (found->second.parent == found->first) break;
  }
  return false;
}

bool FolderMirror::IsRoot(const std::string& source, FolderId folder) const {
  return std::find(roots_.begin(), roots_.end(), std::pair(source, folder)) != roots_.end();
}

std::shared_ptr<const FolderRows> FolderMirror::RowsLocked(FolderId folder) {
  auto& rows = rows_[folder];
  if (!rows) rows = std::make_shared<FolderRows>(library_.PhotosIn(folder));
  return rows;
}

}  // namespace vdsto
