#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "tools/vdsto/library/folder_rows.h"
#include "tools/vdsto/library/library.h"

namespace vdsto {

using FolderId = uint32_t;

/// Which catalogue folder mirrors which real folder. The catalogue keeps no such list; the photos'
/// locations tell: a photo two levels below a top-level folder comes from two levels below that
/// folder's source. Any thread may call it.
class FolderMirror {
 public:
  explicit FolderMirror(Library& library);

  /// The folder that mirrors the real folder at `source` already.
  std::optional<FolderId> Find(const std::string& source);
  /// The same, but makes it, and those above it up to `import_root`, when it is not there.
  /// `import_root` itself becomes a top-level folder unless something mirrors it or a folder above
  /// it. Throws ToolError.
  FolderId Ensure(const std::string& source, const std::string& import_root);
  /// The same for photos that were moved here from the real folder at `old_source`. When that is
  /// gone, its mirror becomes this folder's: under its new name and in its new place, unless the
  /// user has given it others.
  FolderId Follow(const std::string& old_source, const std::string& source,
                  const std::string& import_root);
  /// The photos of a folder, read once; after that, as they were then.
  std::shared_ptr<const FolderRows> Rows(FolderId folder);
  /// Forgets the photos of a folder that is done with.
  void Release(FolderId folder);

  uint64_t CreatedFolders() const;

 private:
  struct Folder {
    FolderId parent;
    std::string name;
  };
  enum class Evidence { kNone, kOther, kMatches };

  void ReadFolders();
  void AddRoot(const std::string& source, FolderId folder);
  void Remember(FolderId id, FolderId parent, std::string name);
  std::optional<FolderId> FindLocked(const std::string& source);
  std::optional<FolderId> FindChild(FolderId parent, const std::string& source);
  std::optional<FolderId> FindRenamed(const std::vector<FolderId>& folders,
                                      const std::string& source);
  void Bind(const std::string& source, FolderId folder);
  bool IsTaken(FolderId folder) const;
  FolderId EnsureLocked(const std::string& source, const std::string& import_root);
  FolderId Create(FolderId parent, const std::string& source);
  void Adopt(const std::string& old_source, const std::string& source,
             const std::string& import_root);
  void Relocate(FolderId folder, FolderId parent, const std::string& old_source,
                const std::string& source);
  bool IsInOrBelow(FolderId folder, FolderId above) const;
  bool IsRoot(const std::string& source, FolderId folder) const;
  bool IsBelowSomeRoot(const std::string& source) const;
  Evidence Judge(FolderId folder, const std::string& source, int depth);
  std::string MainSource(FolderId folder, int folders_asked);
  void CountSources(FolderId folder, int depth, int& folders_left,
                    std::map<std::string, int>& votes);
  std::shared_ptr<const FolderRows> RowsLocked(FolderId folder);
  std::vector<FolderId> ChildrenOf(FolderId parent) const;

  Library& library_;
  mutable std::mutex mutex_;  // guards everything below
  std::unordered_map<FolderId, Folder> folders_;
  std::unordered_multimap<FolderId, FolderId> children_;
  std::unordered_map<std::string, FolderId> mirrored_;   // by source
  std::unordered_set<FolderId> taken_;                   // the folders in mirrored_
  std::vector<std::pair<std::string, FolderId>> roots_;  // source and top-level folder
  std::unordered_map<FolderId, std::shared_ptr<const FolderRows>> rows_;
  FolderId next_id_ = 1;
  uint64_t created_ = 0;
};

}  // namespace vdsto
