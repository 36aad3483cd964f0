#include "tools/vdsto/selection/unknown_name.h"

#include "tools/vdsto/text/text.h"

namespace vdsto {

ToolError NotInCatalogue(std::string_view noun, const std::vector<std::string>& names,
                         std::string_view advice) {
  constexpr size_t kMostNamed = 3;
  return {ExitCode::kNotFound, "no " + std::string(noun) + (names.size() > 1 ? "s " : " ") +
                                   Listed(names, kMostNamed) +
                                   " in the catalogue: " + std::string(advice)};
}

}  // namespace vdsto
