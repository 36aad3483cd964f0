#pragma once
#include <memory>
#include <string>
#include <vector>

#include "tools/vdsto/import/import_summary.h"
#include "tools/vdsto/library/image_seal.h"
#include "tools/vdsto/library/library.h"

namespace vdsto {

/// The folders that an import is to mirror: those that can be read, without links, and the others.
struct ImportRoots {
  std::vector<std::string> folders;
  std::vector<Remark> unreadable;
};

/// Throws ToolError when none can be read.
ImportRoots CheckImportRoots(const std::vector<std::string>& folders);

/// Mirrors the folders under the personal root. One thread walks, every core probes, the caller's
/// thread writes; stops early, with everything consistent, when the user asks for it. Throws
/// ToolError when the catalogue or its images fail; what was written before stays. Images are
/// encrypted by `seal`, unless it is null.
ImportSummary ImportFolders(Library& library, std::shared_ptr<const ImageSeal> seal,
                            const ImportRoots& roots, bool quiet);

}  // namespace vdsto
