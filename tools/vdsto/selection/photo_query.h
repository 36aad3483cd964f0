#pragma once
#include <string>
#include <vector>

#include "tools/vdsto/library/library.h"
#include "tools/vdsto/selection/photo_filter.h"
#include "tools/vdsto/selection/photo_selection.h"

namespace vdsto {

/// Photos that a command line names, and those that it asks for as vdsto find does.
struct PhotoQuery {
  PhotoWords photos;
  std::vector<std::string> texts;  ///< all of them in a photo's name
  FilterWords filter;              ///< narrows what the texts find

  bool IsEmpty() const { return photos.words.empty() && texts.empty(); }
};

/// The GUIDs of the photos that are named, as SelectPhotos answers them, and then of those that are
/// found, each once. Throws ToolError, also when nothing is found, and for a filter without texts.
CStringArray SelectPhotos(Library& library, const PhotoQuery& query);

}  // namespace vdsto
