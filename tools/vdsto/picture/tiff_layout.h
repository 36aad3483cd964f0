#pragma once
#include <cstdint>

#include "tools/vdsto/picture/picture_data.h"

namespace vdsto {

/// How a TIFF file is cut into pieces, each of which is read as a whole, in lines of pixels. 0: not
/// so, or no TIFF file.
struct TiffLayout {
  uint64_t tile_height = 0;
  uint64_t strip_height = 0;
};

/// Of the file's first picture. Never throws.
TiffLayout ReadTiffLayout(const PictureData& data);

}  // namespace vdsto
