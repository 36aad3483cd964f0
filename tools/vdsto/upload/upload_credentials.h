#pragma once
#include <string>

namespace vdsto {

/// How to get in at a server, and whom to believe to be the server. Passwords never come from the
/// command line, which every user of the machine can read.
struct UploadCredentials {
  std::string user;          ///< $VDSTO_UPLOAD_USER
  std::string password;      ///< $VDSTO_UPLOAD_PASSWORD
  std::string key_password;  ///< $VDSTO_UPLOAD_KEY_PASSWORD, of the ssh key
  std::string key_file;      ///< an ssh key; empty: the agent's and those in ~/.ssh
  std::string netrc_file;    ///< else ~/.netrc, if there is one
  std::string known_hosts;   ///< $VDSTO_UPLOAD_KNOWN_HOSTS, else ~/.ssh/known_hosts
  std::string certificates;  ///< $VDSTO_UPLOAD_CA; empty: the system's
};

/// What the environment says, and these two files.
UploadCredentials ReadUploadCredentials(const std::string& key_file, const std::string& netrc_file);

/// The path of a file in the user's home; empty when there is no home.
std::string HomeFile(const std::string& name);

}  // namespace vdsto
