#include "tools/vdsto/import/interruption.h"

#include <csignal>

namespace vdsto {
namespace {

volatile std::sig_atomic_t interrupted = 0;
int guards = 0;

void Note(int) {
  interrupted = 1;
}

void Install(int signal) {
  struct sigaction action {};
  action.sa_handler = Note;
  action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
  sigaction(signal, &action, nullptr);
}

}  // namespace

InterruptionGuard::InterruptionGuard() {
  if (guards++ > 0) return;
  interrupted = 0;
  Install(SIGINT);
  Install(SIGTERM);
}

InterruptionGuard::~InterruptionGuard() {
  if (--guards > 0) return;
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
}

bool IsInterrupted() {
  return interrupted != 0;
}

}  // namespace vdsto
