#include "test_support.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <utmp.h>
#include <vips/vips.h>

#include <exiv2/exiv2.hpp>
#include <fstream>
#include <sstream>
#include <stdexcept>

/// The HEIC encoder that only the tests use keeps a block for itself.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libx265";
}

namespace vdsto_test {
namespace fs = std::filesystem;

namespace {

int ExitCodeOf(int status) {
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

TempFolder::TempFolder() {
  std::string name = (fs::temp_directory_path() / "vdsto-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path_ = fs::canonical(name);
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string TempFolder::operator/(std::string_view name) const {
  const fs::path path = path_ / name;
  fs::create_directories(path.parent_path());
  return path.string();
}

void WritePicture(const std::string& path, int width, int height, int seed) {
  vips_operation_block_set("VipsForeignSaveMagick", FALSE);  // which writes BMP
  VipsImage* noise = nullptr;
  VipsImage* bytes = nullptr;
  const bool done = vips_gaussnoise(&noise, width, height, "mean", 128.0, "sigma", 40.0, "seed",
                                    seed, nullptr) == 0 &&
                    vips_cast(noise, &bytes, VIPS_FORMAT_UCHAR, nullptr) == 0 &&
                    vips_image_write_to_file(bytes, path.c_str(), nullptr) == 0;
  if (bytes) g_object_unref(bytes);
  if (noise) g_object_unref(noise);
  if (!done) throw std::runtime_error(vips_error_buffer());
}

void WriteExif(const std::string& path, const ExifFields& fields) {
  const auto image = Exiv2::ImageFactory::open(path);
  image->readMetadata();
  for (const auto& [key, value] : fields) image->exifData()[key] = std::string(value);
  image->writeMetadata();
}

void WriteFile(const std::string& path, std::string_view contents) {
  std::ofstream(path, std::ios::binary) << contents;
}

std::string ReadFile(const std::string& path) {
  std::ostringstream contents;
  contents << std::ifstream(path, std::ios::binary).rdbuf();
  return contents.str();
}

void CutFile(const std::string& path, uint64_t size) {
  fs::resize_file(path, size);
}

Program::Program(std::vector<std::string> arguments, std::string password, std::string_view input) {
  WriteFile(output_ / "in", input);
  pid_ = fork();
  if (pid_ != 0) return;
  arguments.insert(arguments.begin(), VDSTO_PROGRAM);
  std::vector<char*> raw;
  for (std::string& argument : arguments) raw.push_back(argument.data());
  raw.push_back(nullptr);
  // Permissions hold for a superuser too: no reading and writing of everything.
  prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE);
  prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH);
  dup2(open((output_ / "in").c_str(), O_RDONLY), STDIN_FILENO);
  dup2(open((output_ / "out").c_str(), O_CREAT | O_WRONLY, 0600), STDOUT_FILENO);
  dup2(open((output_ / "err").c_str(), O_CREAT | O_WRONLY, 0600), STDERR_FILENO);
  password.empty() ? unsetenv("VDSTO_PASSWORD") : setenv("VDSTO_PASSWORD", password.c_str(), 1);
  setenv("TZ", "Asia/Seoul", 1);
  execv(raw[0], raw.data());
  _exit(126);
}

Program::~Program() {
  if (pid_ > 0) Signal(SIGKILL), Wait();
}

void Program::Signal(int signal) const {
  kill(pid_, signal);
}

Outcome Program::Wait() {
  int status = 0;
  waitpid(std::exchange(pid_, -1), &status, 0);
  return {ExitCodeOf(status), ReadFile(output_ / "out"), ReadFile(output_ / "err")};
}

Outcome RunVdsto(std::vector<std::string> arguments, std::string password, std::string_view input) {
  return Program(std::move(arguments), std::move(password), input).Wait();
}

TerminalOutcome RunAtTerminal(const std::function<int()>& body, const std::string& prompt,
                              const std::string& typed) {
  int screen = -1;
  int keyboard = -1;
  if (openpty(&screen, &keyboard, nullptr, nullptr, nullptr) != 0)
    throw std::runtime_error("no terminal");
  const int pid = fork();
  if (pid == 0) login_tty(keyboard), _exit(body());
  TerminalOutcome result;
  bool has_typed = false;
  int status = 0;
  const auto read_screen = [&] {
    char text[256];
    pollfd ready{screen, POLLIN, 0};
    if (poll(&ready, 1, 20) > 0) {
      const auto count = read(screen, text, sizeof text);
      result.outcome.out.append(text, count > 0 ? static_cast<size_t>(count) : 0);
    }
  };
  while (waitpid(pid, &status, WNOHANG) == 0) {
    read_screen();
    if (has_typed || result.outcome.out.find(prompt) == std::string::npos) continue;
    has_typed = write(screen, typed.data(), typed.size()) > 0;
  }
  read_screen();
  result.outcome.code = ExitCodeOf(status);
  termios state{};
  result.echoes = tcgetattr(keyboard, &state) == 0 && (state.c_lflag & ECHO) != 0;
  close(screen);
  close(keyboard);
  return result;
}

}  // namespace vdsto_test
