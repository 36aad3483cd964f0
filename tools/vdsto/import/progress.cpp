#include "tools/vdsto/import/progress.h"

#include <cstdio>

#include "tools/vdsto/text/source_location.h"

namespace vdsto {
namespace {

constexpr std::chrono::seconds kLineInterval{5};

}  // namespace

Progress::Progress(bool quiet) : quiet_(quiet), next_line_(Clock::now() + kLineInterval) {}

void Progress::Show(uint64_t done, uint64_t found, const std::string& path) {
  if (quiet_) return;
  const double fraction = found == 0 ? 0 : static_cast<double>(done) / static_cast<double>(found);
  bar_.Draw(fraction, std::to_string(done) + "/" + std::to_string(found),
            std::string(LastComponent(path)));
  if (bar_.IsVisible() || Clock::now() < next_line_) return;
  std::fprintf(stderr, "%llu of %llu files so far\n", static_cast<unsigned long long>(done),
               static_cast<unsigned long long>(found));
  next_line_ = Clock::now() + kLineInterval;
}

}  // namespace vdsto
