#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace bench {

/// Prints the measured runs as they come, and a table of the figures that matter: ours against the
/// peer, and the cost at the largest size against the cost at the smallest.
/// Benchmarks are named "<operation>/<ours|peer>/<size>"; a counter "items" says how many items
/// one iteration handles. Of repeated runs the median counts.
class RatioTable : public benchmark::ConsoleReporter {
 public:
  /// `size` is what sizes count; with a `target`, the highest ratio to be accepted, the table says
  /// where it is met.
  explicit RatioTable(const char* size = "photos", double target = 0)
      : size_(size), target_(target) {}

  /// The machine is described once, however many times benchmarks are run.
  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;

  /// What a reader of an operation's figures must know; printed below the table.
  void Note(const std::string& operation, const std::string& note) { notes_[operation] = note; }

  /// The table of everything measured so far.
  void Print() const;

 private:
  using Key = std::pair<std::string, int>;  // operation, size
  struct Pair {
    double ours_us = 0;
    double peer_us = 0;
  };

  const char* size_;
  double target_;
  std::map<Key, Pair> results_;
  std::map<std::string, std::string> notes_;
  bool described_ = false;
};

}  // namespace bench
