#include "vdstomgr/storage/sorted_units.h"

#include <algorithm>
#include <cassert>
#include <functional>
#include <span>
#include <utility>

#include "vdstomgr/storage/merge_sort.h"

namespace vdstomgr {
namespace {

struct RankedUnit {
  std::uint64_t rank;
  const void* unit;
};

bool operator<(const RankedUnit& left, const RankedUnit& right) {
  return left.rank != right.rank ? left.rank < right.rank : std::less<>()(left.unit, right.unit);
}

/// Units whose keys are alike up to `at`.
struct Run {
  std::span<RankedUnit> units;
  std::size_t at;
};

std::size_t SharedStart(const Run& run, const IndexKey& key) {
  std::size_t shared = key.Limit();
  const KeyBytes first = key.Of(run.units.front().unit);
  for (const RankedUnit& each : run.units) {
    if (shared <= run.at) break;
    shared = key.SharedStart(first, key.Of(each.unit), run.at, shared);
  }
  return shared;
}

/// Sorts a run by the next bytes in which its keys are not all alike, and adds to `runs` what these
/// bytes leave undecided.
void SortRun(Run run, const IndexKey& key, std::vector<Run>& runs) {
  run.at = SharedStart(run, key);
  for (RankedUnit& each : run.units) each.rank = key.Rank(key.Of(each.unit), run.at);
  std::sort(run.units.begin(), run.units.end());
  for (std::size_t first = 0; first < run.units.size();) {
    const std::uint64_t rank = run.units[first].rank;
    std::size_t end = first + 1;
    while (end < run.units.size() && run.units[end].rank == rank) ++end;
    if (end - first > 1 && key.HasMore(rank, run.at)) {
      runs.push_back({run.units.subspan(first, end - first), run.at + IndexKey::kRankBytes});
    }
    first = end;
  }
}

/// How many steps from `limit` downwards `same` holds for, where it holds for all until it fails:
/// by doubling steps, then by halves.
template <class Same>
int CountSame(int limit, const Same& same) {
  int known = 0;
  int step = 1;
  while (step <= limit - known && same(known + step)) {
    known += step;
    step = step <= limit / 2 ? step * 2 : limit;
  }
  int end = std::min(limit, known + step - 1);
  while (known < end) {
    const int middle = known + (end - known + 1) / 2;
    if (same(middle)) {
      known = middle;
    } else {
      end = middle - 1;
    }
  }
  return known;
}

}  // namespace

void SortedUnits::Build(std::vector<const void*> units, const IndexKey& key) {
  Clear();
  key_ = key;
  units_ = std::move(units);
  if (units_.empty()) return;
  key_.SetOriginAt(units_.front());
  if (key_.IsRanked()) {
    SortByKey();
  } else if (key_.GetKind() == CRkFileArrayIndex::INDEX_CUSTOM && key_.GetCompare() != nullptr) {
    const auto compare = key_.GetCompare();
    MergeSort(units_,
              [&](const void* left, const void* right) { return compare(&left, &right) < 0; });
  }
}

void SortedUnits::Clear() {
  units_.clear();
  ranks_.clear();
}

void SortedUnits::SortByKey() {
  std::vector<RankedUnit> ranked(units_.size());
  std::transform(units_.begin(), units_.end(), ranked.begin(), [](const void* unit) {
    return RankedUnit{0, unit};
  });
  std::vector<Run> runs;
  shared_ = SharedStart({ranked, 0}, key_);
  SortRun({ranked, shared_}, key_, runs);
  ranks_.resize(ranked.size());
  std::transform(ranked.begin(), ranked.end(), ranks_.begin(),
                 [](const RankedUnit& each) { return each.rank; });
  while (!runs.empty()) {
    const Run run = runs.back();
    runs.pop_back();
    SortRun(run, key_, runs);
  }
  std::transform(ranked.begin(), ranked.end(), units_.begin(),
                 [](const RankedUnit& each) { return each.unit; });
}

bool SortedUnits::SharesStart(KeyBytes key) const {
  return key_.SharedStart(key, key_.Of(units_.front()), 0, shared_) == shared_;
}

int SortedUnits::Find(KeyBytes key) const {
  const bool is_number = key_.GetKind() == CRkFileArrayIndex::INDEX_DWORD;
  if (units_.empty() || (is_number && key_.Limit() == 0) || !SharesStart(key)) return -1;
  const std::uint64_t rank = key_.Rank(key, shared_);
  const bool has_rest = key_.HasMore(rank, shared_);
  const auto compare_rest = [&](std::size_t at) {
    if (!has_rest) return 0;
    return key_.CompareFrom(key_.Of(units_[at]), key, shared_ + IndexKey::kRankBytes);
  };
  std::size_t first = 0;
  for (std::size_t count = units_.size(); count > 0;) {
    const std::size_t middle = first + count / 2;
    const bool below =
        ranks_[middle] < rank || (ranks_[middle] == rank && compare_rest(middle) < 0);
    if (below) {
      first = middle + 1;
      count -= count / 2 + 1;
    } else {
      count /= 2;
    }
  }
  const bool found = first < units_.size() && ranks_[first] == rank && compare_rest(first) == 0;
  return found ? static_cast<int>(first) : -1;
}

int SortedUnits::FindCustom(const void* probe) const {
  const auto compare = key_.GetCompare();
  if (compare == nullptr) return -1;
  const auto found = std::partition_point(
      units_.begin(), units_.end(), [&](const void* unit) { return compare(&probe, &unit) > 0; });
  if (found == units_.end() || compare(&probe, &*found) != 0) return -1;
  return static_cast<int>(found - units_.begin());
}

bool SortedUnits::SameKey(int left, int right) const {
  if (key_.IsRanked()) {
    return ranks_[static_cast<std::size_t>(left)] == ranks_[static_cast<std::size_t>(right)] &&
           key_.CompareFrom(key_.Of(At(left)), key_.Of(At(right)), shared_) == 0;
  }
  const auto compare = key_.GetCompare();
  if (key_.GetKind() != CRkFileArrayIndex::INDEX_CUSTOM || compare == nullptr) return true;
  return compare(&units_[static_cast<std::size_t>(left)],
                 &units_[static_cast<std::size_t>(right)]) == 0;
}

int SortedUnits::RunStart(int position) const {
  assert(Has(position));
  return position -
         CountSame(position, [&](int steps) { return SameKey(position - steps, position); });
}

int SortedUnits::RunEnd(int position) const {
  assert(Has(position));
  return position + CountSame(Count() - 1 - position,
                              [&](int steps) { return SameKey(position + steps, position); });
}

}  // namespace vdstomgr
