#pragma once
#include "tools/vdsto/library/library.h"
#include "tools/vdsto/selection/word_list.h"

namespace vdsto {

/// The photos that a command line names: files of this computer, GUIDs, catalogue paths and
/// patterns of them, and folders, which stand for the photos in them. A pattern means photos, or
/// folders when it ends with '/'.
struct PhotoWords : WordList {
  bool recursive = false;  ///< a folder stands for those below it too
};

/// Their GUIDs as the catalogue has them, each once, in the order of the words and a folder's
/// photos by name. Throws ToolError when some words are no photos; nothing is to be changed then.
CStringArray SelectPhotos(Library& library, const PhotoWords& words);

}  // namespace vdsto
