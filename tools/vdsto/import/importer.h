#pragma once
#include <string>
#include <vector>

#include "tools/vdsto/import/import_summary.h"
#include "tools/vdsto/library/library.h"

namespace vdsto {

/// Mirrors the given folders under the personal root. One thread walks, every core probes, the
/// caller's thread writes; stops early, with everything consistent, when the user asks for it.
/// Throws ToolError when a folder is not there or the catalogue or its images fail; what was
/// written before stays.
ImportSummary ImportFolders(Library& library, const std::vector<std::string>& folders, bool quiet);

}  // namespace vdsto
