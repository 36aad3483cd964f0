#include "tools/vdsto/import/progress_bar.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr std::chrono::milliseconds kInterval{100};
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

ProgressBar::ProgressBar()
    : is_visible_(isatty(STDERR_FILENO) != 0), next_(Clock::now() + kInterval) {}

ProgressBar::~ProgressBar() {
  Clear();
}

void ProgressBar::Draw(double fraction, const std::string& text, const std::string& name) {
  if (!is_visible_ || Clock::now() < next_) return;
  next_ = Clock::now() + kInterval;
  const auto filled = static_cast<size_t>(std::clamp(fraction, 0.0, 1.0) * kBarColumns);
  std::string line =
      "[" + std::string(filled, '#') + std::string(kBarColumns - filled, '.') + "] " + text + "  ";
  const size_t columns = TerminalColumns();
  const size_t left = columns > line.size() + 1 ? columns - line.size() - 1 : 0;
  line += Fitted(Printable(Composed(name)), left);
  std::fprintf(stderr, "\r%s\x1b[K", line.c_str());
  std::fflush(stderr);
  is_drawn_ = true;
}

void ProgressBar::Clear() {
  if (is_drawn_) std::fputs("\r\x1b[K", stderr);
  is_drawn_ = false;
}

}  // namespace vdsto
