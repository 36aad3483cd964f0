#pragma once
#include <memory>

#include "tools/vdsto/upload/server_place.h"
#include "tools/vdsto/upload/upload_target.h"

namespace vdsto {

/// A folder of an SSH server. Logs in with the key that the user names; else with the password, if
/// there is one; else with the agent's keys, those in ~/.ssh, and a netrc file's password.
std::unique_ptr<UploadTarget> MakeSftpTarget(const ServerPlace& place,
                                             const UploadCredentials& credentials);

}  // namespace vdsto
