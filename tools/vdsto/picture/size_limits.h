#pragma once
#include "tools/vdsto/picture/picture_format.h"
#include "tools/vdsto/picture/source_file.h"

namespace vdsto {

/// No picture has more metadata than this in one piece, in bytes; no sidecar is larger.
inline constexpr size_t kMostMetadata = 4 << 20;

/// False for a file whose structure makes the libraries take memory for whatever length it names.
bool IsSafeToRead(const SourceFile& file, PictureFormat format);
/// False for a picture with an XMP packet so large that reading it would take a hundred times its
/// size.
bool HasSaneXmp(Bytes picture, PictureFormat format);

}  // namespace vdsto
