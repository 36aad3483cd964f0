#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vdsto/library/folder_tree.h"

namespace vdsto {

/// What a catalogue path with patterns in it finds.
struct Matches {
  std::vector<std::string> photos;  ///< GUIDs; none when the path ends with '/'
  std::vector<uint32_t> folders;
};

/// Looks a path of patterns up in a tree of folders. Each name between '/' is a pattern, and ** is
/// any number of folders. Paths begin below the personal root, or with another root's own name.
class PatternSearch {
 public:
  explicit PatternSearch(Library& library) : library_(library), roots_(ReadFolderTree(library)) {}

  Matches Find(std::string_view path);

 private:
  using Parts = std::vector<std::string>;

  void Enter(const TreeFolder& folder, const Parts& parts, size_t at);
  void MatchPhotos(const TreeFolder& folder, const std::string& pattern);

  Library& library_;
  std::vector<TreeFolder> roots_;
  bool wants_photos_ = true;
  Matches matches_;
};

}  // namespace vdsto
