#include "tools/vdsto/selection/pattern_search.h"

#include <sstream>

#include "tools/vdsto/selection/name_pattern.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kAnyFolders = "**";

std::vector<std::string> SplitPath(std::string_view path) {
  std::vector<std::string> parts;
  std::istringstream stream{Composed(path)};
  for (std::string part; std::getline(stream, part, '/');) {
    if (!part.empty()) parts.push_back(part);
  }
  return parts;
}

}  // namespace

Matches PatternSearch::Find(std::string_view path) {
  Parts parts = SplitPath(path);
  if (parts.empty()) return {};
  if (parts.back() == kAnyFolders) parts.emplace_back("*");
  wants_photos_ = !path.ends_with('/');
  matches_ = {};
  for (const TreeFolder& root : roots_) {
    if (root.name == parts.front() && parts.size() > 1) Enter(root, parts, 1);
    if (root.id == vdstomgr::kPersonalRoot) Enter(root, parts, 0);
  }
  return std::move(matches_);
}

void PatternSearch::Enter(const TreeFolder& folder, const Parts& parts, size_t at) {
  const bool is_last = at + 1 == parts.size();
  const bool is_any = parts[at] == kAnyFolders;
  if (is_any) Enter(folder, parts, at + 1);
  if (is_last && wants_photos_) MatchPhotos(folder, parts[at]);
  for (const TreeFolder& child : folder.folders) {
    if (is_any) {
      Enter(child, parts, at);
    } else if (MatchesPattern(parts[at], Composed(child.name))) {
      is_last ? matches_.folders.push_back(child.id) : Enter(child, parts, at + 1);
    }
  }
}

void PatternSearch::MatchPhotos(const TreeFolder& folder, const std::string& pattern) {
  if (folder.photos == 0) return;
  for (const PHOTOINFO& photo : library_.PhotosIn(folder.id)) {
    if (MatchesPattern(pattern, Composed(photo.GetFileName())))
      matches_.photos.push_back(photo.szGUID);
  }
}

}  // namespace vdsto
