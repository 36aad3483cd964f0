#pragma once
#include "tools/vdsto/picture/picture_metadata.h"

namespace Exiv2 {
class ExifData;
}

namespace vdsto {

/// Takes over what a camera wrote; a place only when none is known.
void ReadExif(const Exiv2::ExifData& exif, PictureMetadata& metadata);

}  // namespace vdsto
