#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "tools/vdsto/library/library.h"

/// Making folders, and names that are free, too long or no names.
namespace vdsto {

/// Throws ToolError for what cannot be a name in a path: nothing, "." and "..", a text with '/',
/// and one of too many characters.
void RequireName(const std::string& name, size_t most_characters = 128);

/// The sub-folder of that name, in whatever case: the catalogue has only one of them.
std::optional<uint32_t> FindSubFolder(Library& library, uint32_t parent, const std::string& name);
/// Has the folder a photo of exactly this name?
bool HasPhotoNamed(Library& library, uint32_t folder, const std::string& name);

/// Adds a folder and answers its id, the smallest above all others. Throws ToolError.
uint32_t CreateFolder(Library& library, uint32_t parent, const std::string& name);
/// The folder at a path that begins with a root's own name; makes what is missing of it. Throws
/// ToolError when no root has that name.
uint32_t EnsureFolder(Library& library, const std::string& full_path);

/// Gives a folder another parent in its space and a name, with a number when another sub-folder
/// there has it. Answers its name.
std::string RelocateFolder(Library& library, uint32_t folder, uint32_t parent,
                           const std::string& name);

}  // namespace vdsto
