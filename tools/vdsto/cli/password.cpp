#include "tools/vdsto/cli/password.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

/// The terminal with what is typed kept off the screen.
class SilentTerminal {
 public:
  SilentTerminal() : descriptor_(open("/dev/tty", O_RDWR | O_CLOEXEC)) {
    if (descriptor_ < 0 || tcgetattr(descriptor_, &before_) != 0) {
      throw ToolError(ExitCode::kUsage,
                      "no terminal to ask for the password: use --password-file or VDSTO_PASSWORD");
    }
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(descriptor_, TCSAFLUSH, &silent);
  }
  ~SilentTerminal() {
    tcsetattr(descriptor_, TCSAFLUSH, &before_);
    close(descriptor_);
  }
  SilentTerminal(const SilentTerminal&) = delete;
  SilentTerminal& operator=(const SilentTerminal&) = delete;

 private:
  int descriptor_;
  termios before_{};
};

std::string FirstLine(std::istream& input) {
  std::string line;
  std::getline(input, line);
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

std::string AskOnTerminal() {
  const SilentTerminal silent;
  std::fstream terminal("/dev/tty");
  terminal << "Password: " << std::flush;
  std::string password = FirstLine(terminal);
  terminal.clear();
  terminal << '\n' << std::flush;
  return password;
}

}  // namespace

std::string ReadPassword(const PasswordSource& source) {
  if (source.prompt) return AskOnTerminal();
  if (source.file.empty())
    return std::getenv("VDSTO_PASSWORD") ? std::getenv("VDSTO_PASSWORD") : "";
  std::ifstream file(source.file);
  if (!file)
    throw ToolError(ExitCode::kUsage, "cannot read the password file " + Printable(source.file));
  return FirstLine(file);
}

}  // namespace vdsto
