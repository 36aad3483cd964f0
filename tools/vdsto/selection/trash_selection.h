#pragma once
#include <vector>

#include "tools/vdsto/library/trash_bin.h"
#include "tools/vdsto/selection/word_list.h"

namespace vdsto {

/// The photos in the trash that a command line names: GUIDs, files of this computer, names, the
/// paths that photos had or patterns of them, and paths of folders, which stand for all that was in
/// or below them.
struct TrashWords : WordList {};

/// Each once, in the order of the words; all of the trash for no words. Throws ToolError when some
/// words are no photos in the trash, or a name is that of several.
std::vector<TrashedPhoto> SelectTrashed(Library& library, const TrashWords& words);

/// The path without the name of the personal root, as users know it.
std::string PathForUsers(const std::string& full_path);

}  // namespace vdsto
