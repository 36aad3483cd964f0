#include "bench/ratio_table.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace bench {

bool RatioTable::ReportContext(const Context& context) {
  if (!described_) ConsoleReporter::ReportContext(context);
  name_field_width_ = std::max(name_field_width_, context.name_field_width);
  described_ = true;
  return true;
}

void RatioTable::ReportRuns(const std::vector<Run>& runs) {
  ConsoleReporter::ReportRuns(runs);
  for (const Run& run : runs) {
    if (run.error_occurred || run.aggregate_name != "median") continue;
    const std::string& name = run.run_name.function_name;
    const size_t first = name.find('/');
    const size_t second = name.find('/', first + 1);
    const auto items = run.counters.find("items");
    const double per_item =
        run.GetAdjustedRealTime() / (items == run.counters.end() ? 1.0 : double(items->second));
    Pair& pair = results_[{name.substr(0, first), std::atoi(name.c_str() + second + 1)}];
    (name.compare(first + 1, 4, "ours") == 0 ? pair.ours_us : pair.peer_us) = per_item;
  }
}

void RatioTable::Print() const {
  std::printf("\n%-32s %9s %12s %12s %7s %18s\n", "operation", size_, "ours, us", "by hand, us",
              "ratio", "growth (ours)");
  std::map<std::string, double> smallest;
  for (const auto& [key, pair] : results_) {
    const auto& [operation, size] = key;
    const auto [base, is_smallest] = smallest.try_emplace(operation, pair.ours_us);
    std::printf("%-32s %9d %12.2f %12.2f %7.2f", operation.c_str(), size, pair.ours_us,
                pair.peer_us, pair.ours_us / pair.peer_us);
    is_smallest ? std::printf(" %18s", "") : std::printf(" %18.2f", pair.ours_us / base->second);
    if (target_ != 0) {
      const bool met = pair.ours_us <= target_ * pair.peer_us;
      std::printf("   %.1f %s", target_, met ? "met" : "MISSED");
    }
    std::printf("\n");
  }
  for (const auto& [operation, note] : notes_) {
    std::printf("%s: %s\n", operation.c_str(), note.c_str());
  }
}

}  // namespace bench
