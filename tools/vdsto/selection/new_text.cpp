#include "tools/vdsto/selection/new_text.h"

#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {

std::string NewText(std::string_view noun, std::string_view text, size_t most_characters) {
  const std::string result = Trimmed(Composed(text));
  const size_t count = CharacterCount(result);
  if (count <= most_characters) return result;
  throw ToolError(ExitCode::kUsage, "the " + std::string(noun) + " has " + std::to_string(count) +
                                        " characters, and " + std::to_string(most_characters) +
                                        " fit: shorten it");
}

std::string NewName(std::string_view noun, std::string_view text, size_t most_characters) {
  std::string name = NewText(noun, text, most_characters);
  if (name.empty()) throw ToolError(ExitCode::kUsage, "the " + std::string(noun) + " is empty");
  return name;
}

}  // namespace vdsto
