#include "vdstomgr/storage/cluster_file.h"

#include <algorithm>
#include <numeric>

#include "vdstomgr/storage/little_endian.h"
#include "vdstomgr/storage/unit_file.h"

namespace vdstomgr {
namespace {

/// Order in the file is kept at once where that moves no more clusters than this.
constexpr std::size_t kFewMoves = 64;
/// Arrivals are inserted one by one where the sorted clusters are so many times more.
constexpr std::size_t kManyTimes = 64;

/// The order of sorted clusters; never equal for two of them.
bool StandsBefore(const ClusterTable& table, const RankedSlot& left, const RankedSlot& right) {
  if (left.rank != right.rank) return left.rank < right.rank;
  return table.IsBefore(left.slot, right.slot);
}

}  // namespace

/// Once the host has the array, it may change it at any time, from any thread: its lock is held for
/// the operation, and a changed number of clusters is taken as it is.
class ClusterFile::Access {
 public:
  explicit Access(ClusterFile& file) : array_(file.is_seen_ ? &file.array_ : nullptr) {
    if (array_ == nullptr) return;
    array_->GetArray();
    file.UpdateView();
    if (static_cast<std::size_t>(array_->Units().Count()) == file.Count()) return;
    const std::size_t searchable = file.searchable_;
    file.Adopt();
    file.searchable_ = std::min(searchable, file.Count());
  }
  ~Access() {
    if (array_ != nullptr) array_->ReleaseArray(false);
  }
  Access(const Access&) = delete;
  Access& operator=(const Access&) = delete;

 private:
  CRkFileArrayManager* array_;
};

bool ClusterFile::Open(const char* path, const DataHeader& header) {
  constexpr int kCommitted = 2;
  constexpr int kWriteThrough = 2;
  Close();
  if (!array_.OpenFile(path, static_cast<int>(header.ClusterBytes()), kCommitted, kWriteThrough)) {
    return false;
  }
  if (array_.GetArrayID() != header.storage_id) {
    array_.CloseFile();
    return false;
  }
  is_open_ = true;
  key_length_ = header.key_length;
  has_order_ = header.key_type == kNumberKey || header.key_type == kStringKey;
  order_ = KeyOrder(header.key_type);
  unit_.resize(header.ClusterBytes());
  UpdateView();
  DropFree();
  Adopt();
  Sort();
  if (FreeCopies()) {
    DropFree();
    Adopt();
    Sort();
  }
  return true;
}

void ClusterFile::Close() {
  if (is_open_) Settle();
  array_.CloseFile();
  is_open_ = false;
  units_ = nullptr;
  Adopt();
}

void ClusterFile::UpdateView() {
  units_ = array_.Units().Units();
}

CRkFileArrayManager* ClusterFile::Array() {
  Settle();
  is_seen_ = true;
  return &array_;
}

std::size_t ClusterFile::Size() {
  const Access access(*this);
  return Count();
}

/// Takes the clusters as they lie in the file, all of them unsorted.
void ClusterFile::Adopt() {
  UpdateView();
  sorted_.Clear();
  arrived_.resize(static_cast<std::size_t>(array_.Units().Count()));
  std::iota(arrived_.begin(), arrived_.end(), DWORD{0});
  settled_ = arrived_.size();
  searchable_ = 0;
  needs_sort_ = true;
}

void ClusterFile::DropFree() {
  const ClusterTable table = Table();
  const auto size = static_cast<DWORD>(array_.Units().Count());
  DWORD kept = size;
  for (DWORD slot = size; slot-- > 0;) {
    if (!table.IsFree(slot)) continue;
    --kept;
    if (slot != kept) table.Copy(slot, kept);
  }
  if (kept != size) array_.Units().SetCount(static_cast<int>(kept));
}

/// Frees all but one of clusters that stand there more than once.
bool ClusterFile::FreeCopies() {
  const ClusterTable table = Table();
  const std::vector<RankedSlot> all = sorted_.All();
  bool found = false;
  for (std::size_t i = 1; i < all.size(); ++i) {
    if (all[i].rank != all[i - 1].rank || !table.IsSameRecord(all[i - 1].slot, all[i].slot)) {
      continue;
    }
    table.Free(all[i - 1].slot);
    found = true;
  }
  return found;
}

DWORD ClusterFile::SlotAt(std::size_t position) const {
  return position < sorted_.Size() ? sorted_.At(position).slot
                                   : arrived_[position - sorted_.Size()];
}

bool ClusterFile::Add(KeyBytes key, const RecordPlace& place, bool sort) {
  const Access access(*this);
  if (!is_open_) return false;
  EncodeCluster(unit_.data(), key_length_, key, place);
  if (!array_.Units().Add(unit_.data())) return false;
  UpdateView();
  if (settled_ == Count()) ++settled_;
  arrived_.push_back(static_cast<DWORD>(array_.Units().Count() - 1));
  needs_sort_ = true;
  if (sort) SortArrived();
  SettleIfSeen();
  return true;
}

/// The place of the removed cluster is taken by the last one.
bool ClusterFile::RemoveAt(std::size_t position) {
  const Access access(*this);
  const DWORD slot = SlotAt(position);
  const auto last = static_cast<DWORD>(array_.Units().Count() - 1);
  Forget(position);
  if (slot != last) {
    Relabel(last, slot);
    Table().Copy(slot, last);
  }
  settled_ = std::min(settled_, position);
  const bool done = array_.Units().SetCount(static_cast<int>(last));
  UpdateView();
  searchable_ = std::min(searchable_, Count());
  SettleIfSeen();
  return done;
}

bool ClusterFile::RemoveAll() {
  const Access access(*this);
  const bool done = array_.Units().SetCount(0);
  Adopt();
  return done;
}

void ClusterFile::Forget(std::size_t position) {
  if (position < sorted_.Size()) {
    sorted_.Remove(position);
  } else {
    arrived_.erase(arrived_.begin() + static_cast<std::ptrdiff_t>(position - sorted_.Size()));
  }
}

void ClusterFile::Relabel(DWORD from, DWORD to) {
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

void ClusterFile::SortIfNeeded() {
  const Access access(*this);
  if (!needs_sort_) return;
  SortArrived();
  needs_sort_ = false;
  SettleIfSeen();
}

bool ClusterFile::Sort() {
  const Access access(*this);
  SortArrived();
  needs_sort_ = false;
  return has_order_ && Settle();
}

void ClusterFile::SortArrived() {
  if (!has_order_) return;
  if (!arrived_.empty() && sorted_.Size() == 0) SetOriginAt(arrived_.front());
  if (sorted_.Size() / kManyTimes >= arrived_.size()) {
    for (const DWORD slot : arrived_) InsertArrived(slot);
  } else if (!arrived_.empty()) {
    MergeArrived();
  }
  arrived_.clear();
  searchable_ = Count();
  MoveOriginBehindGap();
}

void ClusterFile::InsertArrived(DWORD slot) {
  const ClusterTable table = Table();
  const RankedSlot cluster = table.Ranked(slot);
  const std::size_t position =
      sorted_.CountBefore(cluster.rank, [&](DWORD other) { return table.IsBefore(other, slot); });
  if (position != sorted_.Size()) settled_ = std::min(settled_, position);
  sorted_.Insert(position, cluster);
}

void ClusterFile::MergeArrived() {
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
void ClusterFile::SetOriginAt(DWORD slot) {
  if (order_.IsNumber()) order_.SetOrigin(LoadLittle<DWORD>(Table().Unit(slot)));
}

/// Number keys that have a gap of more than half the circle between them are in order from the gap
/// on. Such a gap holds the whole of some quarter of the circle.
void ClusterFile::MoveOriginBehindGap() {
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
    if (next - previous <= kCircle / 2) continue;
    std::vector<RankedSlot> all;
    for (std::size_t i = 0; i < size; ++i) all.push_back(sorted_.At((at + i) % size));
    SetOriginAt(all.front().slot);
    for (RankedSlot& cluster : all) cluster = Table().Ranked(cluster.slot);
    sorted_.Assign(all);
    settled_ = 0;
    return;
  }
}

void ClusterFile::SettleIfSeen() {
  if (is_seen_ || Count() - settled_ <= kFewMoves) Settle();
}

/// Follows the cycles of the permutation. A last unit beside the clusters holds the one that each
/// cycle begins with, so that none is ever only in memory.
bool ClusterFile::Settle() {
  const Access access(*this);
  const std::size_t size = Count();
  const std::size_t start = settled_;
  if (start == size) return true;
  std::vector<DWORD> sources(size - start);
  for (std::size_t i = 0; i < sources.size(); ++i) sources[i] = SlotAt(start + i);
  if (!array_.Units().Add(Table().Unit(sources[0]))) return false;
  UpdateView();
  const ClusterTable table = Table();
  const auto spare = static_cast<DWORD>(size);
  const auto source_of = [&](std::size_t slot) -> DWORD& { return sources[slot - start]; };
  for (std::size_t head = start; head < size; ++head) {
    if (source_of(head) == head) continue;
    table.Copy(spare, static_cast<DWORD>(head));
    auto slot = static_cast<DWORD>(head);
    while (source_of(slot) != head) {
      const DWORD source = source_of(slot);
      table.Copy(slot, source);
      source_of(slot) = slot;
      slot = source;
    }
    table.Copy(slot, spare);
    source_of(slot) = slot;
  }
  array_.Units().SetCount(static_cast<int>(size));
  UpdateView();
  sorted_.NumberFrom(start);
  std::iota(arrived_.begin(), arrived_.end(), static_cast<DWORD>(sorted_.Size()));
  settled_ = size;
  return true;
}

/// The binary search of the first searchable clusters, whatever their order.
template <class Compare>
int ClusterFile::Search(const Compare& compare) const {
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

int ClusterFile::Find(KeyBytes key) {
  const Access access(*this);
  const ClusterTable table = Table();
  if (!IsTreeSearchable()) {
    return Search([&](DWORD slot) { return table.Order().Compare(table.KeyAt(slot), key); });
  }
  const std::uint64_t rank = order_.Rank(key);
  const std::size_t end =
      sorted_.CountBefore(rank, [&](DWORD slot) { return table.IsUpTo(slot, key); });
  if (end == 0) return -1;
  const RankedSlot found = sorted_.At(end - 1);
  const bool is_hit = found.rank == rank && order_.CompareRest(table.KeyAt(found.slot), key) == 0;
  return is_hit ? static_cast<int>(end - 1) : -1;
}

int ClusterFile::FindPrefix(KeyBytes prefix) {
  const Access access(*this);
  const ClusterTable table = Table();
  const auto is_hit = [&](DWORD slot) { return KeyOrder::StartsWith(table.KeyAt(slot), prefix); };
  if (!IsTreeSearchable()) {
    return Search([&](DWORD slot) {
      return is_hit(slot) ? 0 : table.Order().Compare(table.KeyAt(slot), prefix);
    });
  }
  const std::size_t first = sorted_.CountBefore(
      order_.Rank(prefix), [&](DWORD slot) { return table.IsBefore(slot, prefix); });
  return first < sorted_.Size() && is_hit(SlotAt(first)) ? static_cast<int>(first) : -1;
}

int ClusterFile::FindRecord(KeyBytes key, std::uint64_t offset) {
  const Access access(*this);
  const int last = Find(key);
  const ClusterTable table = Table();
  for (int position = last; position >= 0; --position) {
    const DWORD slot = SlotAt(static_cast<std::size_t>(position));
    if (order_.Compare(table.KeyAt(slot), key) != 0) return -1;
    if (table.PlaceAt(slot).offset == offset) return position;
  }
  return -1;
}

RecordPlace ClusterFile::PlaceAt(std::size_t position) {
  const Access access(*this);
  return Table().PlaceAt(SlotAt(position));
}

std::vector<BYTE> ClusterFile::KeyAt(std::size_t position) {
  const Access access(*this);
  const KeyBytes key = Table().KeyAt(SlotAt(position));
  return {key.begin(), key.end()};
}

}  // namespace vdstomgr
