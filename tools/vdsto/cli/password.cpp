#include "tools/vdsto/cli/password.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <fstream>
#include <optional>
#include <string_view>

#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

/// What ends or stops a process that waits at its terminal.
constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP};

volatile std::sig_atomic_t noted_signal = 0;

/// While it lives, signals are noted only, and only while somebody waits.
class NotedSignals {
 public:
  NotedSignals() {
    noted_signal = 0;
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : kSignals) sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, &before_);
    struct sigaction note {};
    note.sa_handler = [](int signal) { noted_signal = signal; };
    for (size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &note, &actions_[i]);
  }
  ~NotedSignals() {
    for (size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &actions_[i], nullptr);
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }
  NotedSignals(const NotedSignals&) = delete;
  NotedSignals& operator=(const NotedSignals&) = delete;

  /// False when a signal came first.
  bool WaitFor(int descriptor) const {
    pollfd ready{descriptor, POLLIN, 0};
    while (ppoll(&ready, 1, nullptr, &before_) < 0 && noted_signal == 0) {
    }
    return noted_signal == 0;
  }

 private:
  sigset_t before_{};
  std::array<struct sigaction, kSignals.size()> actions_{};
};

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
    Show("\n");
    tcsetattr(descriptor_, TCSAFLUSH, &before_);
    close(descriptor_);
  }
  SilentTerminal(const SilentTerminal&) = delete;
  SilentTerminal& operator=(const SilentTerminal&) = delete;

  void Show(std::string_view text) const {
    static_cast<void>(!write(descriptor_, text.data(), text.size()));
  }

  /// What is typed up to the end of the line; nothing when a signal comes first.
  std::optional<std::string> ReadLine(const NotedSignals& signals) const {
    std::string line;
    while (!line.ends_with('\n')) {
      if (!signals.WaitFor(descriptor_)) return std::nullopt;
      std::array<char, 256> typed{};
      const ssize_t count = read(descriptor_, typed.data(), typed.size());
      if (count <= 0) return line;
      line.append(typed.data(), static_cast<size_t>(count));
    }
    line.pop_back();
    return line;
  }

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

/// Nothing when a signal came; the terminal is as it was then.
std::optional<std::string> TryToAsk() {
  const NotedSignals signals;
  const SilentTerminal terminal;
  terminal.Show("Password: ");
  return terminal.ReadLine(signals);
}

/// A signal that came does its work now; when the process survives it, or goes on after a stop, it
/// asks again.
std::string AskOnTerminal() {
  std::optional<std::string> password;
  while (!(password = TryToAsk())) std::raise(noted_signal);
  if (password->empty()) throw ToolError(ExitCode::kUsage, "no password was typed");
  return *password;
}

}  // namespace

std::string ReadPassword(const PasswordSource& source) {
  if (source.prompt) return AskOnTerminal();
  if (source.file.empty()) return EnvironmentVariable("VDSTO_PASSWORD");
  std::ifstream file(source.file);
  if (!file)
    throw ToolError(ExitCode::kUsage, "cannot read the password file " + Printable(source.file));
  return FirstLine(file);
}

}  // namespace vdsto
