#pragma once
#include <string>
#include <string_view>

namespace vdsto {

/// A new photo identifier, "XXXXXXXX-XXXX-7XXX-YXXX-XXXXXXXXXXXX" in upper-case hex digits: the
/// time in milliseconds, then random bits. Photos imported together so lie together in the
/// catalogue.
std::string NewPhotoGuid();

/// Has `text` the form of a photo identifier, in either case?
bool IsPhotoGuid(std::string_view text);

}  // namespace vdsto
