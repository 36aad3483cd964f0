#include "vdstomgr/storage/cluster_file.h"

#include <cassert>

#include "vdstomgr/storage/unit_file.h"

namespace vdstomgr {
namespace {

/// Order in the file is kept at once where that moves no more clusters than this.
constexpr std::size_t kFewMoves = 64;

/// Brings clusters to their places: the one for slot `start` + i lies in slot `sources[i]`. Follows
/// the cycles of the permutation; the spare slot, beside the clusters, holds the one that each
/// cycle begins with, so that none is ever only in memory.
void Permute(const ClusterTable& table, std::size_t start, std::vector<DWORD>& sources,
             DWORD spare) {
  const auto source_of = [&](std::size_t slot) -> DWORD& { return sources[slot - start]; };
  for (std::size_t head = start; head < start + sources.size(); ++head) {
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
    if (static_cast<std::size_t>(array_->Units().Count()) == file.list_.Size()) return;
    const std::size_t searchable = file.list_.SearchableCount();
    file.Adopt();
    file.list_.LimitSearches(searchable);
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
  list_ = ClusterList(header);
  unit_.resize(header.ClusterBytes());
  UpdateView();
  DropFree();
  Sort();
  if (FreeCopies()) {
    DropFree();
    Sort();
  }
  return true;
}

void ClusterFile::Close() {
  if (is_open_) Settle();
  array_.CloseFile();
  is_open_ = false;
  Adopt();
}

void ClusterFile::UpdateView() {
  list_.SetUnits(array_.Units().Units());
}

CRkFileArrayManager* ClusterFile::Array() {
  Settle();
  is_seen_ = true;
  return &array_;
}

std::size_t ClusterFile::Size() {
  const Access access(*this);
  return list_.Size();
}

void ClusterFile::Adopt() {
  list_.Adopt(array_.Units().Units(), static_cast<std::size_t>(array_.Units().Count()));
  needs_sort_ = true;
}

/// Drops the free clusters and adopts the others.
void ClusterFile::DropFree() {
  const ClusterTable table = list_.Table();
  const auto size = static_cast<DWORD>(array_.Units().Count());
  DWORD kept = size;
  for (DWORD slot = size; slot-- > 0;) {
    if (!table.IsFree(slot)) continue;
    --kept;
    if (slot != kept) table.Copy(slot, kept);
  }
  if (kept != size) array_.Units().SetCount(static_cast<int>(kept));
  Adopt();
}

bool ClusterFile::FreeCopies() {
  const std::vector<DWORD> copies = list_.Copies();
  for (const DWORD slot : copies) list_.Table().Free(slot);
  return !copies.empty();
}

bool ClusterFile::Add(KeyBytes key, const RecordPlace& place, bool sort) {
  const Access access(*this);
  if (!is_open_) return false;
  EncodeCluster(unit_.data(), key_length_, key, place);
  if (!array_.Units().Add(unit_.data())) return false;
  UpdateView();
  list_.Append();
  needs_sort_ = true;
  if (sort) list_.Sort();
  SettleIfSeen();
  return true;
}

/// The place of the removed cluster is taken by the last one.
bool ClusterFile::RemoveAt(std::size_t position) {
  const Access access(*this);
  const DWORD slot = list_.SlotAt(position);
  const auto last = static_cast<DWORD>(array_.Units().Count() - 1);
  assert(slot <= last);
  list_.Remove(position);
  if (slot != last) {
    list_.Relabel(last, slot);
    list_.Table().Copy(slot, last);
  }
  const bool done = array_.Units().SetCount(static_cast<int>(last));
  UpdateView();
  SettleIfSeen();
  return done;
}

bool ClusterFile::RemoveAll() {
  const Access access(*this);
  const bool done = array_.Units().SetCount(0);
  Adopt();
  return done;
}

void ClusterFile::SortIfNeeded() {
  const Access access(*this);
  if (!needs_sort_) return;
  list_.Sort();
  needs_sort_ = false;
  SettleIfSeen();
}

bool ClusterFile::Sort() {
  const Access access(*this);
  list_.Sort();
  needs_sort_ = false;
  return list_.HasOrder() && Settle();
}

void ClusterFile::SettleIfSeen() {
  if (is_seen_ || list_.Size() - list_.SettledCount() <= kFewMoves) Settle();
}

bool ClusterFile::Settle() {
  const Access access(*this);
  const std::size_t size = list_.Size();
  const std::size_t start = list_.SettledCount();
  if (start == size) return true;
  std::vector<DWORD> sources(size - start);
  for (std::size_t i = 0; i < sources.size(); ++i) sources[i] = list_.SlotAt(start + i);
  if (!array_.Units().Add(list_.Table().Unit(sources[0]))) return false;
  UpdateView();
  Permute(list_.Table(), start, sources, static_cast<DWORD>(size));
  array_.Units().SetCount(static_cast<int>(size));
  UpdateView();
  list_.Settled();
  return true;
}

int ClusterFile::Find(KeyBytes key) {
  const Access access(*this);
  return list_.Find(key);
}

int ClusterFile::FindPrefix(KeyBytes prefix) {
  const Access access(*this);
  return list_.FindPrefix(prefix);
}

int ClusterFile::FindRecord(KeyBytes key, std::uint64_t offset) {
  const Access access(*this);
  return list_.FindRecord(key, offset);
}

RecordPlace ClusterFile::PlaceAt(std::size_t position) {
  const Access access(*this);
  return list_.Table().PlaceAt(list_.SlotAt(position));
}

std::vector<BYTE> ClusterFile::KeyAt(std::size_t position) {
  const Access access(*this);
  const KeyBytes key = list_.Table().KeyAt(list_.SlotAt(position));
  return {key.begin(), key.end()};
}

}  // namespace vdstomgr
