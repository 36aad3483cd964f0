#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "tools/vdsto/library/library.h"

namespace vdsto {

/// Case and blanks at the ends of the name do not count.
std::optional<TAGINFO> FindTag(Library& library, const std::string& name);

/// Makes a tag; its id is one that no photo carries. Throws ToolError.
uint32_t MakeTag(Library& library, const std::string& name);

/// The GUIDs of the photos that carry a tag.
CStringArray PhotosWithTag(Library& library, uint32_t tag);

}  // namespace vdsto
