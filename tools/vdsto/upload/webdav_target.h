#pragma once
#include <memory>

#include "tools/vdsto/upload/server_place.h"
#include "tools/vdsto/upload/upload_target.h"

namespace vdsto {

/// A collection of a WebDAV server.
std::unique_ptr<UploadTarget> MakeWebDavTarget(const ServerPlace& place,
                                               const UploadCredentials& credentials);

}  // namespace vdsto
