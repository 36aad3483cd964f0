#pragma once
#include <cstdint>
#include <vector>

#include "tools/vdsto/library/library.h"
#include "tools/vdsto/selection/word_list.h"

namespace vdsto {

/// The folders that a command line names: catalogue paths, patterns of them, and folders of this
/// computer that were imported.
struct FolderWords : WordList {};

/// Their ids, each once, in the order of the words. Throws ToolError when some words are no
/// folders; nothing is to be changed then.
std::vector<uint32_t> SelectFolders(Library& library, const FolderWords& words);

}  // namespace vdsto
