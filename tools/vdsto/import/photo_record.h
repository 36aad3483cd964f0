#pragma once
#include <cstdint>
#include <string>

#include "tools/vdsto/picture/picture_probe.h"
#include "vdstomgr/vdstomgr.h"

namespace vdsto {

/// The row of a picture that is new to the catalogue. It names the thumbnail that the store is to
/// hold by then.
PHOTOINFO NewPhotoRecord(const std::string& path, const PictureFacts& facts, uint32_t folder,
                         int32_t now);

/// Brings the row of a picture whose file has changed up to date. What the user may have set stays.
void RefreshPhotoRecord(const PictureFacts& facts, PHOTOINFO& photo);

}  // namespace vdsto
