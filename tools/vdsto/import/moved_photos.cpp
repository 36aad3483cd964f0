#include "tools/vdsto/import/moved_photos.h"

#include <algorithm>
#include <functional>

#include "tools/vdsto/library/trash_bin.h"
#include "tools/vdsto/text/source_location.h"

namespace vdsto {
namespace {

uint64_t HashOf(const std::string& location) {
  return std::hash<std::string>()(location);
}

}  // namespace

std::optional<MovedPhotos::Found> MovedPhotos::Find(const std::string& path) {
  if (!std::exchange(is_read_, true)) ReadAll();
  const auto wanted = std::pair(HashOf(LocationOf(path)), Guid{});
  for (auto place = std::lower_bound(photos_.begin(), photos_.end(), wanted);
       place != photos_.end() && place->first == wanted.first; ++place) {
    const auto photo = library_.Photo(place->second.data());
    if (!photo || *photo->GetOPURL() == '\0') continue;
    const FolderRows rows({*photo});
    if (const KnownFile* known = rows.Find(path))
      return Found{*known, IsTrashFolder(photo->dwFolderID)};
  }
  return std::nullopt;
}

void MovedPhotos::ReadAll() {
  library_.ForEachPhoto([&](const PHOTOINFO& photo) {
    const std::string location = photo.GetOPURL();
    if (!location.empty()) photos_.emplace_back(HashOf(location), std::to_array(photo.szGUID));
  });
  std::sort(photos_.begin(), photos_.end());
}

}  // namespace vdsto
