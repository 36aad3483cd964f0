#include "tools/vdsto/upload/sftp_target.h"

#include <unistd.h>

#include <charconv>
#include <optional>
#include <utility>

#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/upload/curl_session.h"

namespace vdsto {
namespace {

/// One way to prove who the user is.
struct Login {
  long methods;
  std::string key_file;
};

constexpr long kPassword = CURLSSH_AUTH_PASSWORD | CURLSSH_AUTH_KEYBOARD;

bool IsReadable(const std::string& file) {
  return !file.empty() && access(file.c_str(), R_OK) == 0;
}

std::vector<Login> LoginsWith(const UploadCredentials& credentials) {
  if (!credentials.key_file.empty()) return {{CURLSSH_AUTH_PUBLICKEY, credentials.key_file}};
  if (!credentials.password.empty()) return {{kPassword, {}}};
  std::vector<Login> logins;
  if (!EnvironmentVariable("SSH_AUTH_SOCK").empty()) logins.push_back({CURLSSH_AUTH_AGENT, {}});
  for (const char* name : {".ssh/id_ed25519", ".ssh/id_ecdsa", ".ssh/id_rsa"})
    if (IsReadable(HomeFile(name))) logins.push_back({CURLSSH_AUTH_PUBLICKEY, HomeFile(name)});
  if (IsReadable(credentials.netrc_file)) logins.push_back({kPassword, {}});
  return logins;
}

/// A path for a command of the SFTP layer.
std::string Quoted(const std::string& path) {
  std::string result = "\"";
  for (const char c : path) result.append(c == '"' || c == '\\' ? "\\" : "").push_back(c);
  return result + "\"";
}

/// The number behind "name: " in what a command answered.
uint64_t NumberAfter(const std::string& text, const std::string& name) {
  const size_t at = text.find(name + ": ");
  uint64_t number = 0;
  if (at != std::string::npos)
    std::from_chars(text.data() + at + name.size() + 2, text.data() + text.size(), number);
  return number;
}

class SftpTarget : public UploadTarget {
 public:
  SftpTarget(const ServerPlace& place, const UploadCredentials& credentials,
             std::vector<Login> logins)
      : place_(place),
        credentials_(credentials),
        logins_(std::move(logins)),
        session_(place, credentials) {
    if (logins_.empty())
      throw UploadError(UploadFault::kLoginRefused,
                        "no ssh key and no password for " + place.host +
                            ": make a key with ssh-keygen, or set VDSTO_UPLOAD_PASSWORD");
  }

  std::unique_ptr<UploadTarget> Another() const override {
    return std::make_unique<SftpTarget>(place_, credentials_, logins_);
  }
  bool KeepsParts() const override { return true; }

  std::vector<std::string> OpenFolder(const std::string& folder) override {
    const CURLcode code = folder.empty() ? LogIn() : List(folder);
    if (code == CURLE_REMOTE_FILE_NOT_FOUND && folder.empty())
      throw UploadError(UploadFault::kFolderGone,
                        place_.address + " is not there: make that folder first");
    if (code == CURLE_REMOTE_FILE_NOT_FOUND) return Make(folder), std::vector<std::string>();
    if (code != CURLE_OK) session_.Throw(code);
    return Names();
  }

  void Send(OutgoingFile& file, const std::string& path, bool resume) override {
    Transfer(file, path, resume, {});
    file.NoteArrival();
    if (SizeOf(path) != file.Size())
      throw UploadError(UploadFault::kNotWhole, path + ": its size is not that of the file");
  }

  /// The server has confirmed every write and the close before it renames, so that the size of what
  /// was sent from its beginning need not be asked for, which would take as long as sending it.
  bool SendAs(OutgoingFile& file, const std::string& part, bool resume,
              const std::string& to) override {
    if (resume) return UploadTarget::SendAs(file, part, resume, to);
    const bool is_renamed = Transfer(file, part, resume, {RenameCommand(part, to)});
    file.NoteArrival();
    return is_renamed || Rename(part, to);
  }

  /// The protocol's rename never replaces.
  bool Rename(const std::string& from, const std::string& to) override {
    const CURLcode code = Command({RenameCommand(from, to)});
    if (code == CURLE_OK) return true;
    const UploadError error = ErrorOf(code);
    if (code == CURLE_QUOTE_ERROR && SizeOf(to)) return false;
    throw error;
  }

  bool Holds(const OutgoingFile& file, const std::string& path) override {
    if (SizeOf(path) != file.Size()) return false;
    uint64_t position = 0;
    std::vector<char> ours(CURL_MAX_WRITE_SIZE);
    Begin(path);
    session_.SetReceive([&](std::string_view theirs) {
      const size_t count = file.ReadAt(position, std::span(ours).first(theirs.size()));
      position += count;
      return std::string_view(ours.data(), count) == theirs;
    });
    const CURLcode code = session_.Perform();
    if (code == CURLE_WRITE_ERROR) return false;
    if (code != CURLE_OK) session_.Throw(code);
    return position == file.Size();
  }

  void Remove(const std::string& path) override {
    const CURLcode code = Command({"rm " + Named(path)});
    if (code != CURLE_OK && (code != CURLE_QUOTE_ERROR || SizeOf(path))) session_.Throw(code);
  }

 private:
  /// Finds out which login the server takes; all connections use that from then on.
  CURLcode LogIn() {
    CURLcode code = CURLE_LOGIN_DENIED;
    const std::vector<Login> logins = logins_;
    for (const Login& login : logins) {
      logins_ = {login};
      code = List("");
      if (code != CURLE_LOGIN_DENIED) return code;
    }
    logins_ = logins;
    throw UploadError(UploadFault::kLoginRefused,
                      place_.host + " does not let " + place_.user +
                          " in: check the user's name, and the ssh keys or VDSTO_UPLOAD_PASSWORD");
  }

  void Begin(const std::string& path) {
    session_.Begin(path);
    const Login& login = logins_.front();
    session_.Set(CURLOPT_SSH_AUTH_TYPES, login.methods);
    if (login.key_file.empty()) return;
    session_.Set(CURLOPT_SSH_PRIVATE_KEYFILE, login.key_file.c_str());
    if (!credentials_.key_password.empty())
      session_.Set(CURLOPT_KEYPASSWD, credentials_.key_password.c_str());
  }

  /// False when the file was sent and one of the commands behind it failed.
  bool Transfer(OutgoingFile& file, const std::string& path, bool resume,
                const std::vector<std::string>& commands) {
    Begin(path);
    session_.SetFile(file, resume);
    if (!commands.empty()) session_.SetList(CURLOPT_POSTQUOTE, commands);
    const CURLcode code = session_.Perform();
    if (code == CURLE_OK) return true;
    if (code == CURLE_QUOTE_ERROR) return false;
    // A longer file than ours is no part of it.
    if (resume && code == CURLE_FTP_COULDNT_USE_REST) return Transfer(file, path, false, commands);
    ThrowOfSending(code, session_.Reason());
  }

  std::string RenameCommand(const std::string& from, const std::string& to) const {
    return "rename " + Named(from) + " " + Named(to);
  }

  CURLcode List(const std::string& folder) {
    Begin(folder.empty() ? folder : folder + "/");
    session_.Set(CURLOPT_DIRLISTONLY, 1L);
    return session_.Perform();
  }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    std::string_view rest = session_.Body();
    for (size_t end = rest.find('\n'); end != std::string_view::npos; end = rest.find('\n')) {
      names.emplace_back(rest.substr(0, end));
      rest.remove_prefix(end + 1);
    }
    return names;
  }

  CURLcode Command(const std::vector<std::string>& commands) {
    Begin("");
    session_.Set(CURLOPT_NOBODY, 1L);
    session_.SetList(CURLOPT_QUOTE, commands);
    return session_.Perform();
  }

  /// Those that are there already fail, which says nothing.
  void Make(const std::string& folder) {
    std::vector<std::string> commands;
    for (size_t end = folder.find('/'); end != std::string::npos; end = folder.find('/', end + 1))
      commands.push_back("*mkdir " + Named(folder.substr(0, end)));
    commands.push_back("*mkdir " + Named(folder));
    const CURLcode code = Command(commands);
    if (code != CURLE_OK) session_.Throw(code);
  }

  /// Nothing when there is no such file.
  std::optional<uint64_t> SizeOf(const std::string& path) {
    Begin(path);
    session_.Set(CURLOPT_NOBODY, 1L);
    const CURLcode code = session_.Perform();
    if (code == CURLE_REMOTE_FILE_NOT_FOUND) return std::nullopt;
    if (code != CURLE_OK) session_.Throw(code);
    return static_cast<uint64_t>(std::max<int64_t>(0, session_.ContentLength()));
  }

  UploadError ErrorOf(CURLcode code) {
    try {
      session_.Throw(code);
    } catch (const UploadError& error) {
      return error;
    }
  }

  /// The protocol has no word for a full disk: all that a server can say is that it failed. So the
  /// server is asked how much is free.
  [[noreturn]] void ThrowOfSending(CURLcode code, const std::string& reason) {
    constexpr uint64_t kSpare = 64 * 1024;
    const UploadError error = ErrorOf(code);
    const bool may_be_full = code == CURLE_SEND_ERROR || code == CURLE_SSH ||
                             code == CURLE_UPLOAD_FAILED || code == CURLE_REMOTE_DISK_FULL;
    if (may_be_full && Command({"statvfs " + Named("")}) == CURLE_OK) {
      const std::string answer = session_.Headers().count("") ? session_.Headers().at("") : "";
      const bool is_told = answer.find("f_bavail") != std::string::npos;
      if (is_told && NumberAfter(answer, "f_bavail") * NumberAfter(answer, "f_frsize") < kSpare)
        throw UploadError(UploadFault::kNoSpace,
                          place_.address + ": no space left (" + reason + ")");
    }
    throw error;
  }

  std::string PathOf(const std::string& path) const {
    const std::string whole = path.empty() ? place_.path : place_.path + "/" + path;
    constexpr std::string_view kHome = "/~";
    if (whole == kHome || whole.empty()) return whole.empty() ? "/" : ".";
    return whole.starts_with("/~/") ? whole.substr(3) : whole;
  }
  std::string Named(const std::string& path) const { return Quoted(PathOf(path)); }

  const ServerPlace place_;
  const UploadCredentials credentials_;
  std::vector<Login> logins_;  // to be tried; one, once somebody is in
  CurlSession session_;
};

}  // namespace

std::unique_ptr<UploadTarget> MakeSftpTarget(const ServerPlace& place,
                                             const UploadCredentials& credentials) {
  ServerPlace named = place;
  if (named.user.empty()) {
    const std::string self = EnvironmentVariable("USER");
    named = ParseServerPlace(place.address, self.empty() ? "root" : self);
  }
  return std::make_unique<SftpTarget>(named, credentials, LoginsWith(credentials));
}

}  // namespace vdsto
