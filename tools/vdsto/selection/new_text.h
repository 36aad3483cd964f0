#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace vdsto {

/// A text of the user's as the catalogue keeps it: composed, without blanks at its ends. Throws
/// ToolError, in which `noun` stands for it, when it has more characters than fit.
std::string NewText(std::string_view noun, std::string_view text, size_t most_characters);

/// The same for a name, which cannot be empty.
std::string NewName(std::string_view noun, std::string_view text, size_t most_characters);

}  // namespace vdsto
