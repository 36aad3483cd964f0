#include "tools/vdsto/import/progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr std::chrono::milliseconds kBarInterval{100};
constexpr std::chrono::seconds kLineInterval{5};
constexpr size_t kBarColumns = 24;

size_t TerminalColumns() {
  winsize size{};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

/// As much of `text` as fits into `columns`.
std::string Fitted(const std::string& text, size_t columns) {
  size_t characters = std::min(CharacterCount(text), columns);
  std::string result = FirstCharacters(text, characters);
  while (DisplayWidth(result) > columns) result = FirstCharacters(text, --characters);
  return result;
}

}  // namespace

Progress::Progress(bool quiet)
    : quiet_(quiet), terminal_(isatty(STDERR_FILENO) != 0), next_(Clock::now() + kBarInterval) {
  if (!terminal_) next_ = Clock::now() + kLineInterval;
}

Progress::~Progress() {
  Clear();
}

void Progress::Show(uint64_t done, uint64_t found, const std::string& path) {
  if (quiet_ || Clock::now() < next_) return;
  if (terminal_) {
    DrawBar(done, found, path);
    next_ = Clock::now() + kBarInterval;
  } else {
    std::fprintf(stderr, "%llu of %llu files so far\n", static_cast<unsigned long long>(done),
                 static_cast<unsigned long long>(found));
    next_ = Clock::now() + kLineInterval;
  }
}

void Progress::DrawBar(uint64_t done, uint64_t found, const std::string& path) {
  const size_t filled = found == 0 ? 0 : static_cast<size_t>(done * kBarColumns / found);
  std::string line = "[" + std::string(filled, '#') + std::string(kBarColumns - filled, '.') +
                     "] " + std::to_string(done) + "/" + std::to_string(found) + "  ";
  const size_t columns = TerminalColumns();
  const size_t left = columns > line.size() + 1 ? columns - line.size() - 1 : 0;
  line += Fitted(Printable(Composed(LastComponent(path))), left);
  std::fprintf(stderr, "\r%s\x1b[K", line.c_str());
  std::fflush(stderr);
  drawn_ = true;
}

void Progress::Clear() {
  if (drawn_) std::fputs("\r\x1b[K", stderr);
  drawn_ = false;
}

}  // namespace vdsto
