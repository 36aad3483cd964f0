#include "tools/vdsto/selection/unknown_name.h"

#include "tools/vdsto/text/text.h"

namespace vdsto {

ToolError NotInCatalogue(std::string_view noun, const std::vector<std::string>& names,
                         std::string_view advice) {
  constexpr size_t kMostNamed = 3;
  std::string list;
  for (size_t i = 0; i < names.size() && i < kMostNamed; ++i)
    list += (i == 0 ? "" : ", ") + Printable(names[i]);
  if (names.size() > kMostNamed) list += " and more";
  return {ExitCode::kNotFound, "no " + std::string(noun) + (names.size() > 1 ? "s " : " ") + list +
                                   " in the catalogue: " + std::string(advice)};
}

}  // namespace vdsto
