#include "tools/vdsto/upload/folder_target.h"
#include "tools/vdsto/upload/server_place.h"
#include "tools/vdsto/upload/sftp_target.h"
#include "tools/vdsto/upload/upload_target.h"
#include "tools/vdsto/upload/webdav_target.h"

namespace vdsto {

std::unique_ptr<UploadTarget> OpenUploadTarget(const std::string& name,
                                               const UploadCredentials& credentials) {
  if (!IsUrl(name)) return MakeFolderTarget(name);
  const ServerPlace place = ParseServerPlace(name, credentials.user);
  return place.scheme == "sftp" ? MakeSftpTarget(place, credentials)
                                : MakeWebDavTarget(place, credentials);
}

}  // namespace vdsto
