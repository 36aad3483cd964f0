#include "upload_servers.h"

#include <arpa/inet.h>
#include <pwd.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace vdsto_test {
namespace fs = std::filesystem;

namespace {

sockaddr_in Loopback(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<uint16_t>(port));
  return address;
}

std::string FreePort() {
  const int descriptor = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address = Loopback(0);
  socklen_t size = sizeof address;
  bind(descriptor, reinterpret_cast<sockaddr*>(&address), size);
  getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size);
  close(descriptor);
  return std::to_string(ntohs(address.sin_port));
}

bool Answers(const std::string& port) {
  const int descriptor = socket(AF_INET, SOCK_STREAM, 0);
  const sockaddr_in address = Loopback(std::stoi(port));
  const bool answers =
      connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  close(descriptor);
  return answers;
}

int Spawn(std::vector<std::string> command) {
  std::vector<char*> raw;
  for (std::string& word : command) raw.push_back(word.data());
  raw.push_back(nullptr);
  const int pid = fork();
  if (pid != 0) return pid;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  execv(raw[0], raw.data());
  _exit(127);
}

void RunOrThrow(const std::vector<std::string>& command) {
  int status = 0;
  waitpid(Spawn(command), &status, 0);
  if (status != 0) throw std::runtime_error(command.front() + " fails");
}

std::vector<int> ChildrenOf(int pid) {
  std::vector<int> children;
  const std::string number = std::to_string(pid);
  std::ifstream list("/proc/" + number + "/task/" + number + "/children");
  for (int child = 0; list >> child;) children.push_back(child);
  return children;
}

void KillTree(int pid) {
  kill(pid, SIGSTOP);
  for (const int child : ChildrenOf(pid)) KillTree(child);
  kill(pid, SIGKILL);
}

std::string UserName() {
  const passwd* user = getpwuid(getuid());
  return user != nullptr ? user->pw_name : "root";
}

}  // namespace

UploadServer::UploadServer() : port_(FreePort()) {}

UploadServer::~UploadServer() {
  Kill();
}

void UploadServer::Start() {
  if (access(command_.front().c_str(), X_OK) != 0)
    throw std::runtime_error(command_.front() + " is not installed");
  pid_ = Spawn(command_);
  for (int i = 0; i < 500 && !Answers(port_); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  if (!Answers(port_)) throw std::runtime_error(command_.front() + " does not answer");
}

void UploadServer::Kill() {
  if (pid_ < 0) return;
  KillTree(pid_);
  waitpid(std::exchange(pid_, -1), nullptr, 0);
}

SshServer::SshServer(const std::string& folder) : host_key(NewKey("host_key")) {
  const std::string user_key = NewKey("user_key");
  if (getuid() == 0) fs::create_directories("/run/sshd");
  WriteFile(files_ / "config", "Port " + port_ + "\nListenAddress 127.0.0.1\nHostKey " + host_key +
                                   "\nPidFile none\nAuthorizedKeysFile " + user_key +
                                   ".pub\nStrictModes no\nUsePAM no\n"
                                   "PermitRootLogin yes\nSubsystem sftp internal-sftp\n");
  command_ = {"/usr/sbin/sshd", "-D", "-f", files_ / "config", "-E", files_ / "log"};
  url = "sftp://" + UserName() + "@127.0.0.1:" + port_ + folder;
  options = {"--key", user_key};
  setenv("VDSTO_UPLOAD_KNOWN_HOSTS", (files_ / "known_hosts").c_str(), 1);
  Believe(host_key);
}

std::string SshServer::NewKey(const std::string& name) {
  const std::string path = files_ / name;
  RunOrThrow({"/usr/bin/ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", path});
  return path;
}

void SshServer::Believe(const std::string& key) const {
  WriteFile(files_ / "known_hosts", "[127.0.0.1]:" + port_ + " " + ReadFile(key + ".pub"));
}

SshAgent::SshAgent(const std::string& key)
    : pid_(Spawn({"/usr/bin/ssh-agent", "-D", "-a", files_ / "socket"})) {
  setenv("SSH_AUTH_SOCK", (files_ / "socket").c_str(), 1);
  for (int i = 0; i < 500 && !fs::exists(files_ / "socket"); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  RunOrThrow({"/usr/bin/ssh-add", "-q", key});
}

SshAgent::~SshAgent() {
  unsetenv("SSH_AUTH_SOCK");
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
}

DavServer::DavServer(const std::string& folder, const std::string& name) {
  const std::string own = fs::path(files_ / "users").parent_path().string();
  WriteFile(own + "/users", "me:secret\n");
  std::string config = "server.document-root = \"" + folder + "\"\nserver.port = " + port_ +
                       "\nvar.own = \"" + own + "\"" + R"(
server.modules = ("mod_auth", "mod_authn_file", "mod_webdav")
server.bind = "127.0.0.1"
server.errorlog = var.own + "/log"
server.upload-dirs = (var.own)
webdav.activate = "enable"
auth.backend = "plain"
auth.backend.plain.userfile = var.own + "/users"
auth.require = ("/" => ("method" => "basic", "realm" => "test", "require" => "valid-user"))
)";
  if (!name.empty()) {
    Certify(own, name);
    config += R"(server.modules += ("mod_openssl")
ssl.engine = "enable"
ssl.pemfile = var.own + "/server"
ssl.privkey = var.own + "/server.key"
)";
  }
  WriteFile(own + "/config", config);
  command_ = {"/usr/sbin/lighttpd", "-D", "-f", own + "/config"};
  url = (name.empty() ? "http" : "https") + ("://me@127.0.0.1:" + port_);
  setenv("VDSTO_UPLOAD_PASSWORD", "secret", 1);
}

void DavServer::Certify(const std::string& own, const std::string& name) {
  const auto make = [&](const std::string& file, std::vector<std::string> more) {
    std::vector<std::string> command{"/usr/bin/openssl",
                                     "req",
                                     "-x509",
                                     "-newkey",
                                     "ed25519",
                                     "-nodes",
                                     "-days",
                                     "2",
                                     "-subj",
                                     "/CN=test",
                                     "-out",
                                     own + file,
                                     "-keyout",
                                     own + file + ".key"};
    command.insert(command.end(), more.begin(), more.end());
    RunOrThrow(command);
  };
  authority = own + "/authority";
  make("/authority", {});
  make("/server", {"-CA", authority, "-CAkey", authority + ".key", "-addext",
                   "subjectAltName=" + name, "-addext", "basicConstraints=critical,CA:FALSE"});
}

AnsweringServer::AnsweringServer() {
  constexpr const char* kServer = R"(
import http.server, sys
class Server(http.server.BaseHTTPRequestHandler):
    protocol_version = 'HTTP/1.1'
    def answer(self, status, body=b''):
        self.rfile.read(int(self.headers.get('Content-Length', 0)))
        self.send_response(status)
        self.send_header('Content-Length', str(len(body)))
        self.end_headers()
        self.wfile.write(body)
    def do_PROPFIND(self): self.answer(207, b'<multistatus xmlns="DAV:"/>')
    def do_HEAD(self): self.answer(200)
    def do_PUT(self): self.answer(int(self.path.split('/')[1]))
    do_MKCOL = do_DELETE = lambda self: self.answer(201)
    def log_message(self, *words): pass
http.server.ThreadingHTTPServer(('127.0.0.1', int(sys.argv[1])), Server).serve_forever()
)";
  command_ = {"/usr/bin/python3", "-c", kServer, port_};
  url = "http://127.0.0.1:" + port_;
}

}  // namespace vdsto_test
