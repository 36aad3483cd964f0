#pragma once
#include "tools/vdsto/picture/picture_metadata.h"

namespace Exiv2 {
class IptcData;
}

namespace vdsto {

/// Takes over what is not known yet. Texts are of the character set that the data name, else UTF-8
/// when they are well-formed, else a guess.
void FillFromIptc(const Exiv2::IptcData& iptc, PictureMetadata& metadata);

}  // namespace vdsto
