#pragma once
#include <string>
#include <string_view>

namespace vdsto {

/// A folder of a server, as a URL names it.
struct ServerPlace {
  std::string scheme;  ///< "sftp", "http" or "https"
  std::string host;
  std::string port;     ///< empty: the scheme's own
  std::string user;     ///< empty: nobody is named
  std::string url;      ///< with the user, without a '/' at its end
  std::string address;  ///< the same without the user
  std::string path;     ///< of the folder, decoded

  bool IsLoopback() const;
};

/// Does it look like a URL rather than a folder's path?
bool IsUrl(std::string_view text);
/// Throws ToolError: no URL, another scheme, or a password, which is never taken from there. `user`
/// is the one for a URL that names none.
ServerPlace ParseServerPlace(const std::string& url, const std::string& user);

/// A path as it stands in a URL: all but letters, digits and "-._~/" as %NN.
std::string UrlPath(std::string_view path);
/// The inverse.
std::string FromUrlPath(std::string_view path);

}  // namespace vdsto
