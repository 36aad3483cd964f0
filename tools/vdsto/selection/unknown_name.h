#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "tools/vdsto/tool_error.h"

namespace vdsto {

/// "no tag Tokio in the catalogue: vdsto tag ls shows all tags": the failure of every command that
/// is given a name that nothing has. The advice leads to the right one.
ToolError NotInCatalogue(std::string_view noun, const std::vector<std::string>& names,
                         std::string_view advice);

}  // namespace vdsto
