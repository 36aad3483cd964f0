#include "tools/vdsto/cli/password.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string_view>
#include <vector>

#include "tools/vdsto/library/database_password.h"
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

using Answers = std::vector<std::string>;

/// Nothing when a signal came; the terminal is as it was then.
std::optional<Answers> TryToAsk(const std::vector<std::string>& questions) {
  const NotedSignals signals;
  const SilentTerminal terminal;
  Answers answers;
  for (const std::string& question : questions) {
    terminal.Show((answers.empty() ? "" : "\n") + question);
    const auto line = terminal.ReadLine(signals);
    if (!line) return std::nullopt;
    answers.push_back(*line);
    if (line->empty()) throw ToolError(ExitCode::kUsage, "no password was typed");
  }
  return answers;
}

/// A signal that came does its work now; when the process survives it, or goes on after a stop, it
/// asks again.
Answers AskOnTerminal(const std::vector<std::string>& questions) {
  std::optional<Answers> answers;
  while (!(answers = TryToAsk(questions))) std::raise(noted_signal);
  return *answers;
}

std::string ReadFirstLine(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw ToolError(ExitCode::kUsage, "cannot read the password file " + Printable(path));
  return FirstLine(file);
}

/// What is read as far as the first NUL opens a library, so nothing in front of one is no password.
std::string RequireOne(std::string password, const std::string& where) {
  if (!password.empty() && password.front() != '\0') return password;
  throw ToolError(ExitCode::kUsage, where + ", and an empty password is none: " +
                                        "say nothing about passwords for a library without one");
}

[[noreturn]] void Refuse(const std::string& reason) {
  throw ToolError(ExitCode::kUsage, "this cannot be a password: " + reason);
}

void RequireReliable(const std::string& password) {
  if (password.find('\0') != std::string::npos) Refuse("it has a NUL character");
  if (!IsUtf8(password)) Refuse("it is not in UTF-8");
  const std::string counting = CountingPassword(password);
  if (counting == password) return;
  Refuse("only its first " + Counted(CharacterCount(counting), "character") +
         " would count (20 places, of which a Korean character takes two): take a shorter one");
}

}  // namespace

bool PasswordSource::IsNamed() const {
  return prompt || !file.empty() || std::getenv("VDSTO_PASSWORD") != nullptr;
}

std::string ReadPassword(const PasswordSource& source, const std::string& question) {
  if (source.prompt) return AskOnTerminal({question}).front();
  if (!source.file.empty()) {
    return RequireOne(ReadFirstLine(source.file),
                      "the first line of " + Printable(source.file) + " is empty");
  }
  if (!source.IsNamed()) return {};
  return RequireOne(EnvironmentVariable("VDSTO_PASSWORD"), "VDSTO_PASSWORD is set but empty");
}

std::string ReadNewPassword(const PasswordSource& source, const std::string& question) {
  std::string password;
  if (source.prompt) {
    const Answers answers = AskOnTerminal({question, "The same again: "});
    if (answers[0] != answers[1])
      throw ToolError(ExitCode::kUsage, "the two passwords differ: nothing was done");
    password = answers[0];
  } else {
    password = ReadPassword(source);
  }
  RequireReliable(password);
  return password;
}

}  // namespace vdsto
