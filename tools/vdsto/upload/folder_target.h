#pragma once
#include <memory>
#include <string>

#include "tools/vdsto/upload/upload_target.h"

namespace vdsto {

/// A folder of this computer.
std::unique_ptr<UploadTarget> MakeFolderTarget(const std::string& folder);

}  // namespace vdsto
