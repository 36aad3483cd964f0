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

/// OpenSSH's SFTP server. Its key is in VDSTO_UPLOAD_KNOWN_HOSTS, the user's key in the options;
/// the system's password does as well.
class SshServer : public UploadServer {
 public:
  explicit SshServer(const std::string& folder);
  /// An ssh key of the test's own; the path of its private half.
  std::string NewKey(const std::string& name);
  /// Writes the file of known hosts: this server with the public half of that key.
  void Believe(const std::string& key) const;

  std::string host_key;
};

/// An ssh agent that knows one key, in SSH_AUTH_SOCK.
class SshAgent {
 public:
  explicit SshAgent(const std::string& key);
  ~SshAgent();
  SshAgent(const SshAgent&) = delete;
  SshAgent& operator=(const SshAgent&) = delete;

 private:
  TempFolder files_;
  int pid_;
};

/// lighttpd as WebDAV server. The password is in VDSTO_UPLOAD_PASSWORD. With a `name` it is https,
/// and the server's certificate is for that ("IP:127.0.0.1").
class DavServer : public UploadServer {
 public:
  explicit DavServer(const std::string& folder, const std::string& name = "");

  /// The certificate of who signed that of the server.
  std::string authority;

 private:
  void Certify(const std::string& own, const std::string& name);
};

/// A WebDAV server of the test's own that answers each upload with the status that the path begins
/// with ("/507") and keeps nothing.
class AnsweringServer : public UploadServer {
 public:
  AnsweringServer();
};

}  // namespace vdsto_test
