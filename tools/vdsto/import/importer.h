#pragma once
#include <set>
#include <string>
#include <vector>

#include "tools/vdsto/import/import_summary.h"
#include "tools/vdsto/library/library.h"

namespace vdsto {

/// The folders that an import is to mirror: those that can be read, without links, and the others.
/// Of the former, all is walked and judged, or only what has changed.
struct ImportRoots {
  std::vector<std::string> folders;
  std::vector<Remark> unreadable;
  std::vector<std::string> changed = {};  ///< they or folders below them; empty: all of them
  std::set<std::string> unfinished = {};  ///< files that are passed over this time
};

/// Throws ToolError when none can be read.
ImportRoots CheckImportRoots(const std::vector<std::string>& folders);

/// Mirrors the folders under the personal root. One thread walks, every core probes, the caller's
/// thread writes; stops early, with everything consistent, when the user asks for it. Throws
/// ToolError when the catalogue or its images fail; what was written before stays.
ImportSummary ImportFolders(Library& library, const ImportRoots& roots, bool quiet);

}  // namespace vdsto
