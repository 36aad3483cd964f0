#include "vdstomgr/storage/cluster_list.h"

#include <algorithm>
#include <cassert>
#include <numeric>

#include "vdstomgr/storage/little_endian.h"

namespace vdstomgr {
namespace {

/// Arrivals are inserted one by one where the sorted clusters are so many times more.
constexpr std::size_t kManyTimes = 64;

/// The order of sorted clusters; never equal for two of them.
bool StandsBefore(const ClusterTable& table, const RankedSlot& left, const RankedSlot& right) {
  if (left.rank != right.rank) return left.rank < right.rank;
  return table.IsBefore(left.slot, right.slot);
}

}  // namespace

ClusterList::ClusterList(const DataHeader& header)
    : key_length_(header.key_length),
      has_order_(header.key_type == kNumberKey || header.key_type == kStringKey),
      order_(header.key_type) {}

void ClusterList::Adopt(BYTE* units, std::size_t count) {
  units_ = units;
  sorted_.Clear();
  arrived_.resize(count);
  std::iota(arrived_.begin(), arrived_.end(), DWORD{0});
  settled_ = count;
  searchable_ = 0;
}

void ClusterList::LimitSearches(std::size_t count) {
  searchable_ = std::min(count, Size());
}

DWORD ClusterList::SlotAt(std::size_t position) const {
  assert(position < Size());
  return position < sorted_.Size() ? sorted_.At(position).slot
                                   : arrived_[position - sorted_.Size()];
}

void ClusterList::Settled() {
  sorted_.NumberFrom(settled_);
  std::iota(arrived_.begin(), arrived_.end(), static_cast<DWORD>(sorted_.Size()));
  settled_ = Size();
}

void ClusterList::Append() {
  if (settled_ == Size()) ++settled_;
  arrived_.push_back(static_cast<DWORD>(Size()));
}

void ClusterList::Remove(std::size_t position) {
  assert(position < Size());
  if (position < sorted_.Size()) {
    sorted_.Remove(position);
  } else {
    arrived_.erase(arrived_.begin() + static_cast<std::ptrdiff_t>(position - sorted_.Size()));
  }
  settled_ = std::min(settled_, position);
  searchable_ = std::min(searchable_, Size());
}

void ClusterList::Relabel(DWORD from, DWORD to) {
  const ClusterTable table = Table();
  const RankedSlot moved = table.Ranked(from);
  const auto arrival = std::find(arrived_.begin(), arrived_.end(), from);
  if (arrival != arrived_.end()) {
    *arrival = to;
    return;
  }
  std::size_t position =
      sorted_.CountBefore(moved.rank, [&](DWORD slot) { return table.IsBefore(slot, moved.slot); });
  if (position == sorted_.Size() || sorted_.At(position).slot != from) {
    // Two clusters for one record, which only a damaged file has, may stand in either order.
    for (position = 0; sorted_.At(position).slot != from;) ++position;
  }
  sorted_.SetSlot(position, to);
}

void ClusterList::Sort() {
  if (!has_order_) return;
  if (!arrived_.empty() && sorted_.Size() == 0) SetOriginAt(arrived_.front());
  if (sorted_.Size() / kManyTimes >= arrived_.size()) {
    for (const DWORD slot : arrived_) InsertArrived(slot);
  } else if (!arrived_.empty()) {
    MergeArrived();
  }
  arrived_.clear();
  searchable_ = Size();
  MoveOriginBehindGap();
}

void ClusterList::InsertArrived(DWORD slot) {
  const ClusterTable table = Table();
  const RankedSlot cluster = table.Ranked(slot);
  const std::size_t position =
      sorted_.CountBefore(cluster.rank, [&](DWORD other) { return table.IsBefore(other, slot); });
  if (position != sorted_.Size()) settled_ = std::min(settled_, position);
  sorted_.Insert(position, cluster);
}

void ClusterList::MergeArrived() {
  const ClusterTable table = Table();
  const auto before = [&](const RankedSlot& left, const RankedSlot& right) {
    return StandsBefore(table, left, right);
  };
  std::vector<RankedSlot> all = sorted_.All();
  const auto old_size = static_cast<std::ptrdiff_t>(all.size());
  for (const DWORD slot : arrived_) all.push_back(table.Ranked(slot));
  const auto middle = all.begin() + old_size;
  if (!std::is_sorted(middle, all.end(), before)) {
    std::sort(middle, all.end(), before);
    settled_ = std::min(settled_, static_cast<std::size_t>(old_size));
  }
  const auto first_moved = std::upper_bound(all.begin(), middle, *middle, before);
  if (first_moved != middle) {
    settled_ = std::min(settled_, static_cast<std::size_t>(first_moved - all.begin()));
    std::inplace_merge(first_moved, middle, all.end(), before);
  }
  sorted_.Assign(all);
}

/// Number keys are ranked from some number on; any that is there will do to begin with.
void ClusterList::SetOriginAt(DWORD slot) {
  if (order_.IsNumber()) order_.SetOrigin(LoadLittle<DWORD>(Table().Unit(slot)));
}

/// Number keys that have a gap of more than half the circle between them are in order from the gap
/// on. Such a gap holds the whole of some quarter of the circle.
void ClusterList::MoveOriginBehindGap() {
  constexpr std::int64_t kCircle = std::int64_t{1} << 32;
  if (!order_.IsNumber() || sorted_.Size() < 2) return;
  const auto size = sorted_.Size();
  const auto rank_at = [&](std::size_t i) { return static_cast<std::int64_t>(sorted_.At(i).rank); };
  const std::int64_t first = rank_at(0);
  const std::int64_t last = rank_at(size - 1);
  if (last - first < kCircle / 2) return;
  for (std::int64_t quarter = 0; quarter < kCircle; quarter += kCircle / 4) {
    const std::size_t at =
        sorted_.CountBefore(static_cast<std::uint64_t>(quarter), [](DWORD) { return false; });
    const std::int64_t next = at < size ? rank_at(at) : first + kCircle;
    const std::int64_t previous = at > 0 ? rank_at(at - 1) : last - kCircle;
    if (next - previous > kCircle / 2) return RotateTo(at % size);
  }
}

/// Makes the cluster at a position the first one, those before it the last.
void ClusterList::RotateTo(std::size_t first) {
  std::vector<RankedSlot> all = sorted_.All();
  std::rotate(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(first), all.end());
  SetOriginAt(all.front().slot);
  for (RankedSlot& cluster : all) cluster = Table().Ranked(cluster.slot);
  sorted_.Assign(all);
  settled_ = 0;
}

std::vector<DWORD> ClusterList::Copies() const {
  const ClusterTable table = Table();
  const std::vector<RankedSlot> all = sorted_.All();
  std::vector<DWORD> copies;
  for (std::size_t i = 1; i < all.size(); ++i) {
    const bool is_copy =
        all[i].rank == all[i - 1].rank && table.IsSameRecord(all[i - 1].slot, all[i].slot);
    if (is_copy) copies.push_back(all[i - 1].slot);
  }
  return copies;
}

/// The binary search of the first searchable clusters, whatever their order.
template <class Compare>
int ClusterList::Search(const Compare& compare) const {
  std::size_t low = 0;
  for (std::size_t high = searchable_; low < high;) {
    const std::size_t middle = low + (high - low) / 2;
    const int order = compare(SlotAt(middle));
    if (order == 0) return static_cast<int>(middle);
    if (order > 0) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return -1;
}

int ClusterList::Find(KeyBytes key) const {
  const ClusterTable table = Table();
  if (!IsTreeSearchable()) {
    return Search([&](DWORD slot) { return order_.Compare(table.KeyAt(slot), key); });
  }
  const std::uint64_t rank = order_.Rank(key);
  const std::size_t end =
      sorted_.CountBefore(rank, [&](DWORD slot) { return table.IsUpTo(slot, key); });
  if (end == 0) return -1;
  const RankedSlot found = sorted_.At(end - 1);
  const bool is_hit = found.rank == rank && order_.CompareRest(table.KeyAt(found.slot), key) == 0;
  return is_hit ? static_cast<int>(end - 1) : -1;
}

int ClusterList::FindPrefix(KeyBytes prefix) const {
  const ClusterTable table = Table();
  const auto is_hit = [&](DWORD slot) { return KeyOrder::StartsWith(table.KeyAt(slot), prefix); };
  if (!IsTreeSearchable()) {
    return Search(
        [&](DWORD slot) { return is_hit(slot) ? 0 : order_.Compare(table.KeyAt(slot), prefix); });
  }
  const std::size_t first = sorted_.CountBefore(
      order_.Rank(prefix), [&](DWORD slot) { return table.IsBefore(slot, prefix); });
  return first < sorted_.Size() && is_hit(SlotAt(first)) ? static_cast<int>(first) : -1;
}

int ClusterList::FindRecord(KeyBytes key, std::uint64_t offset) const {
  assert(arrived_.empty());
  const ClusterTable table = Table();
  for (int position = Find(key); position >= 0; --position) {
    const DWORD slot = SlotAt(static_cast<std::size_t>(position));
    if (order_.Compare(table.KeyAt(slot), key) != 0) return -1;
    if (table.PlaceAt(slot).offset == offset) return position;
  }
  return -1;
}

}  // namespace vdstomgr
