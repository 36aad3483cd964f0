#pragma once
#include <string>
#include <vector>

#include "test_support.h"

namespace vdsto_test {

/// A server on the loopback address that serves one folder, as whoever runs the test.
class UploadServer {
 public:
  virtual ~UploadServer();
  UploadServer(const UploadServer&) = delete;
  UploadServer& operator=(const UploadServer&) = delete;

  /// Begins to serve, on the same port every time. Throws when the program is not installed.
  void Start();
  /// Kills it and all that it has forked.
  void Kill();

  /// The URL of its folder.
  std::string url;
  /// What `vdsto upload run` needs besides.
  std::vector<std::string> options;

 protected:
  UploadServer();
  std::string port_;
  std::vector<std::string> command_;
  TempFolder files_;

 private:
  int pid_ = -1;
};

/// OpenSSH's SFTP server. Its key is in VDSTO_UPLOAD_KNOWN_HOSTS, the user's key in the options.
class SshServer : public UploadServer {
 public:
  explicit SshServer(const std::string& folder);
  /// An ssh key of the test's own; the path of its private half.
  std::string NewKey(const std::string& name);
  /// Writes the file of known hosts: this server with the public half of that key.
  void Believe(const std::string& key) const;

  std::string host_key;
};

/// lighttpd as WebDAV server. The password is in VDSTO_UPLOAD_PASSWORD.
class DavServer : public UploadServer {
 public:
  explicit DavServer(const std::string& folder);
};

}  // namespace vdsto_test
