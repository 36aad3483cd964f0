#include "tools/vdsto/upload/upload_credentials.h"

#include <unistd.h>

#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {

UploadCredentials ReadUploadCredentials(const std::string& key_file,
                                        const std::string& netrc_file) {
  UploadCredentials result;
  result.user = EnvironmentVariable("VDSTO_UPLOAD_USER");
  result.password = EnvironmentVariable("VDSTO_UPLOAD_PASSWORD");
  result.key_password = EnvironmentVariable("VDSTO_UPLOAD_KEY_PASSWORD");
  result.known_hosts = EnvironmentVariable("VDSTO_UPLOAD_KNOWN_HOSTS");
  result.certificates = EnvironmentVariable("VDSTO_UPLOAD_CA");
  result.key_file = key_file;
  result.netrc_file = netrc_file;
  const std::string usual = HomeFile(".netrc");
  if (netrc_file.empty() && access(usual.c_str(), R_OK) == 0) result.netrc_file = usual;
  if (result.known_hosts.empty()) result.known_hosts = HomeFile(".ssh/known_hosts");
  return result;
}

std::string HomeFile(const std::string& name) {
  const std::string home = EnvironmentVariable("HOME");
  return home.empty() ? std::string() : Joined(home, name);
}

}  // namespace vdsto
