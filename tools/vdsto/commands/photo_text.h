#pragma once
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "vdstomgr/vdstomgr.h"

/// Photos as text, for people and for programs.
namespace vdsto {

/// "2004-06-29 15:29:33" in local time; empty for 0.
std::string TimeText(int32_t time);

/// The last-write time to the second; empty when there is none.
std::string LastWriteText(const PHOTOINFO& photo);

/// Can the photo be shown? One that cannot has no location of a thumbnail, and its record no real
/// size.
bool CanBeShown(const PHOTOINFO& photo);

/// "1600 x 1200"; "-" for a photo that cannot be shown.
std::string PixelText(const PHOTOINFO& photo);

/// Every field under a stable key. `folder` is the photo's catalogue path. What is not known is
/// null.
nlohmann::ordered_json PhotoAsJson(const PHOTOINFO& photo, const std::string& folder);

/// JSON text in UTF-8; bytes that are none are replaced.
std::string JsonText(const nlohmann::ordered_json& json);

}  // namespace vdsto
