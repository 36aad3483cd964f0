#include "tools/vdsto/selection/folder_selection.h"

#include <algorithm>

#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/selection/name_pattern.h"
#include "tools/vdsto/selection/pattern_search.h"

namespace vdsto {

std::vector<uint32_t> SelectFolders(Library& library, const FolderWords& words) {
  CataloguePath paths(library);
  std::vector<uint32_t> ids;
  const auto add = [&](uint32_t id) {
    if (std::find(ids.begin(), ids.end(), id) == ids.end()) ids.push_back(id);
  };
  SelectNames(words, "folder", "vdsto tree shows all folders", [&](const Name& name) {
    if (const auto folder = paths.FindFolder(name.text)) return add(*folder), true;
    if (!name.may_be_pattern || !IsPattern(name.text)) return false;
    const Matches matches = PatternSearch(library).Find(name.text + '/');
    std::for_each(matches.folders.begin(), matches.folders.end(), add);
    return !matches.folders.empty();
  });
  return ids;
}

}  // namespace vdsto
