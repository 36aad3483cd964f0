#include "vdstomgr/storage/storage_snapshot.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "vdstomgr/storage/array_format.h"
#include "vdstomgr/storage/cluster_table.h"
#include "vdstomgr/storage/data_file_check.h"
#include "vdstomgr/storage/little_endian.h"
#include "vdstomgr/storage/storage_files.h"

namespace vdstomgr {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{1} << 20;
constexpr std::uint64_t kStateInRecord = 1;

bool ReadWhole(os::File& file, std::uint64_t offset, void* buffer, std::size_t size) {
  std::size_t count = 0;
  return !file.ReadAt(offset, buffer, size, count) && count == size;
}

/// The clusters of a storage: those that its index file has, then those that become known.
class ClusterSet {
 public:
  explicit ClusterSet(const DataHeader& header) : header_(header), order_(header.key_type) {}

  /// Reads the index file; one that cannot be read names nothing. Of equal keys the newest record
  /// counts: the writer may just be replacing the others.
  void Read(os::File& file);
  /// Is the record one that the index file names? Records come in the order of their places.
  bool Names(const CheckedRecord& record);
  /// Was an earlier record named that has this key?
  bool HasNamed(KeyBytes key) const;

  void Add(const CheckedRecord& record);
  /// The file of what was added, in key order.
  void Write(const StorageSnapshot::Sink& sink) const;

 private:
  ClusterTable TableOf(const std::vector<BYTE>& units) const {
    return {const_cast<BYTE*>(units.data()), header_.key_length, order_};
  }
  void SortKnown();
  std::vector<DWORD> SlotsInOrder(const std::vector<BYTE>& units) const;

  DataHeader header_;
  KeyOrder order_;
  std::vector<BYTE> known_;
  std::vector<DWORD> by_key_;     ///< slots
  std::vector<DWORD> by_offset_;  ///< positions in by_key_, as are those of is_met_
  std::vector<bool> is_met_;
  std::size_t next_ = 0;
  std::vector<BYTE> added_;
};

void ClusterSet::Read(os::File& file) {
  std::array<BYTE, kArrayHeaderBytes> start{};
  std::uint64_t size = 0;
  if (file.Size(size) || !ReadWhole(file, 0, start.data(), start.size())) return;
  const ArrayHeader header = ArrayHeader::Decode(start.data());
  if (header.array_id != header_.storage_id || header.unit_size != header_.ClusterBytes()) return;
  const std::uint64_t bytes = std::min<std::uint64_t>(header.data_bytes, size - kArrayHeaderBytes);
  known_.resize(static_cast<std::size_t>(bytes / header.unit_size * header.unit_size));
  if (!ReadWhole(file, kArrayHeaderBytes, known_.data(), known_.size())) known_.clear();
  SortKnown();
}

std::vector<DWORD> ClusterSet::SlotsInOrder(const std::vector<BYTE>& units) const {
  const ClusterTable table = TableOf(units);
  std::vector<DWORD> slots(units.size() / header_.ClusterBytes());
  std::iota(slots.begin(), slots.end(), DWORD{0});
  std::sort(slots.begin(), slots.end(), [&](DWORD left, DWORD right) {
    const int difference = order_.Compare(table.KeyAt(left), table.KeyAt(right));
    return difference != 0 ? difference < 0
                           : table.PlaceAt(left).offset < table.PlaceAt(right).offset;
  });
  return slots;
}

void ClusterSet::SortKnown() {
  if (order_.IsNumber() && !known_.empty()) order_.SetOrigin(LoadLittle<DWORD>(known_.data()));
  const ClusterTable table = TableOf(known_);
  for (const DWORD slot : SlotsInOrder(known_)) {
    if (!table.PlaceAt(slot).IsWithin(header_)) continue;
    const bool is_same =
        !by_key_.empty() && order_.Compare(table.KeyAt(by_key_.back()), table.KeyAt(slot)) == 0;
    if (is_same) by_key_.pop_back();
    by_key_.push_back(slot);
  }
  is_met_.resize(by_key_.size());
  by_offset_.resize(by_key_.size());
  std::iota(by_offset_.begin(), by_offset_.end(), DWORD{0});
  std::sort(by_offset_.begin(), by_offset_.end(), [&](DWORD left, DWORD right) {
    return table.PlaceAt(by_key_[left]).offset < table.PlaceAt(by_key_[right]).offset;
  });
}

bool ClusterSet::Names(const CheckedRecord& record) {
  const ClusterTable table = TableOf(known_);
  const auto slot = [&] { return by_key_[by_offset_[next_]]; };
  while (next_ < by_offset_.size() && table.PlaceAt(slot()).offset < record.place.offset) ++next_;
  const bool is_named = next_ < by_offset_.size() && table.PlaceAt(slot()) == record.place &&
                        order_.Compare(table.KeyAt(slot()), record.key) == 0;
  if (is_named) is_met_[by_offset_[next_]] = true;
  return is_named;
}

bool ClusterSet::HasNamed(KeyBytes key) const {
  const ClusterTable table = TableOf(known_);
  const auto found = std::lower_bound(
      by_key_.begin(), by_key_.end(), key,
      [&](DWORD slot, KeyBytes wanted) { return order_.Compare(table.KeyAt(slot), wanted) < 0; });
  if (found == by_key_.end() || order_.Compare(table.KeyAt(*found), key) != 0) return false;
  return is_met_[static_cast<std::size_t>(found - by_key_.begin())];
}

void ClusterSet::Add(const CheckedRecord& record) {
  const std::size_t at = added_.size();
  added_.resize(at + header_.ClusterBytes());
  EncodeCluster(added_.data() + at, header_.key_length, record.key, record.place);
}

void ClusterSet::Write(const StorageSnapshot::Sink& sink) const {
  const std::size_t unit = header_.ClusterBytes();
  ArrayHeader header;
  header.array_id = header_.storage_id;
  header.unit_size = header_.ClusterBytes();
  header.data_bytes = static_cast<DWORD>(added_.size());
  const auto start = header.Encode();
  std::vector<BYTE> piece(start.begin(), start.end());
  for (const DWORD slot : SlotsInOrder(added_)) {
    const BYTE* const cluster = added_.data() + slot * unit;
    piece.insert(piece.end(), cluster, cluster + unit);
    if (piece.size() < kPieceBytes) continue;
    sink(piece.data(), piece.size());
    piece.clear();
  }
  if (!piece.empty()) sink(piece.data(), piece.size());
}

}  // namespace

class StorageSnapshot::State {
 public:
  /// The index file is read before the header that counts the records, so that the records it names
  /// are among them.
  explicit State(const char* path) {
    const CString data_path = path;
    std::unique_ptr<os::File> index;
    (void)os::Files().Open(NativePath(IndexPathOf(data_path)), os::OpenMode::read, index);
    if (os::Files().Open(NativePath(data_path), os::OpenMode::read, file_)) {
      AddFinding(found_, StorageFault::DataFileUnreadable, 0, "the data file cannot be read");
      return;
    }
    StorageReport first;
    const auto early = DataFileCheck::Begin(*file_, first);
    if (early) {
      DataHeader header = early->Header();
      header.data_length = ~std::uint64_t{0} / 2;  // what is added until the header is read again
      clusters_ = std::make_unique<ClusterSet>(header);
      if (index) clusters_->Read(*index);
    }
    check_ = DataFileCheck::Begin(*file_, found_);
  }

  bool IsReadable() const { return check_.has_value() && clusters_ != nullptr; }
  const StorageReport& Found() const { return found_; }

  bool CopyData(const Sink& sink) {
    sink_ = &sink;
    DataHeader header = check_->Header();
    header.data_length = check_->End();
    const auto start = header.Encode();
    sink(start.data(), start.size());
    check_->Walk(found_, [&](const CheckedRecord& record) { TakeOver(record); });
    CopyUpTo(check_->End());
    return is_whole_ && IsNotEmptied();
  }

  void CopyIndex(const Sink& sink) const { clusters_->Write(sink); }

 private:
  /// A record that was not named by the index file counts when nothing else has its key: it was
  /// added just now, or its adding was cut off by the end of a process.
  void TakeOver(const CheckedRecord& record) {
    const bool is_named = clusters_->Names(record);
    const bool is_new = !is_named && record.is_live && record.has_right_checksum &&
                        !clusters_->HasNamed(record.key) &&
                        new_keys_.insert(TextOf(record.key)).second;
    const bool is_damaged = record.is_live && !record.has_right_checksum;
    if (is_named || is_new) clusters_->Add(record);
    const auto state = is_named || is_new || is_damaged ? RecordState::Live : RecordState::Removed;
    CopyUpTo(record.place.offset);
    CopyUpTo(record.place.offset + record.place.length, static_cast<BYTE>(state));
  }

  static std::string TextOf(KeyBytes key) { return {key.begin(), key.end()}; }

  void CopyUpTo(std::uint64_t end, int state = -1) {
    for (const std::uint64_t start = copied_; is_whole_ && copied_ < end;) {
      buffer_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(end - copied_, kPieceBytes)));
      is_whole_ = ReadWhole(*file_, kDataHeaderBytes + copied_, buffer_.data(), buffer_.size());
      if (state >= 0 && copied_ == start) buffer_[kStateInRecord] = static_cast<BYTE>(state);
      if (is_whole_) (*sink_)(buffer_.data(), buffer_.size());
      copied_ += buffer_.size();
    }
  }

  /// Removing all records puts the data length back, and new ones are written over the old.
  bool IsNotEmptied() {
    StorageReport ignored;
    const auto now = DataFileCheck::Begin(*file_, ignored);
    return now && now->End() >= check_->End();
  }

  std::unique_ptr<os::File> file_;
  std::unique_ptr<ClusterSet> clusters_;
  std::optional<DataFileCheck> check_;
  StorageReport found_;
  std::set<std::string> new_keys_;
  const Sink* sink_ = nullptr;
  std::vector<BYTE> buffer_;
  std::uint64_t copied_ = 0;
  bool is_whole_ = true;
};

StorageSnapshot::StorageSnapshot(const char* path) : state_(std::make_unique<State>(path)) {}
StorageSnapshot::~StorageSnapshot() = default;

bool StorageSnapshot::IsReadable() const {
  return state_->IsReadable();
}

bool StorageSnapshot::CopyData(const Sink& sink) {
  return IsReadable() && state_->CopyData(sink);
}

void StorageSnapshot::CopyIndex(const Sink& sink) const {
  if (IsReadable()) state_->CopyIndex(sink);
}

const StorageReport& StorageSnapshot::Found() const {
  return state_->Found();
}

}  // namespace vdstomgr
