#pragma once
#include <string_view>

#include "tools/vdsto/picture/picture_metadata.h"

namespace Exiv2 {
class XmpData;
}

/// Reading what an XMP packet says of a picture. What is known already stays.
namespace vdsto {

/// The packet's properties; none when it is empty, broken, or nested deeper than any sane one.
Exiv2::XmpData DecodedXmp(std::string_view packet);

void FillWords(const Exiv2::XmpData& xmp, PictureMetadata& metadata);
void FillPlace(const Exiv2::XmpData& xmp, PictureMetadata& metadata);
/// Camera, lens and date.
void FillCamera(const Exiv2::XmpData& xmp, ExifFacts& facts);

}  // namespace vdsto
