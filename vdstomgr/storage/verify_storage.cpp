#include "vdstomgr/storage/verify_storage.h"

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>

#include "vdstomgr/storage/array_format.h"
#include "vdstomgr/storage/cluster_table.h"
#include "vdstomgr/storage/compaction_files.h"
#include "vdstomgr/storage/data_file_check.h"
#include "vdstomgr/storage/little_endian.h"

namespace vdstomgr {
namespace {

struct FaultName {
  StorageFault fault;
  const char* name;
};

constexpr FaultName kNames[] = {
    {StorageFault::DataFileUnreadable, "data_file_unreadable"},
    {StorageFault::DataHeaderShort, "data_header_short"},
    {StorageFault::DataSignature, "data_signature"},
    {StorageFault::DataVersion, "data_version"},
    {StorageFault::DataKeyKind, "data_key_kind"},
    {StorageFault::DataLength, "data_length"},
    {StorageFault::RecordTailShort, "record_tail_short"},
    {StorageFault::RecordDamaged, "record_damaged"},
    {StorageFault::RecordChecksum, "record_checksum"},
    {StorageFault::IndexFileUnreadable, "index_file_unreadable"},
    {StorageFault::IndexHeader, "index_header"},
    {StorageFault::IndexLength, "index_length"},
    {StorageFault::ClusterFree, "cluster_free"},
    {StorageFault::ClusterDouble, "cluster_double"},
    {StorageFault::ClusterOrder, "cluster_order"},
    {StorageFault::ClusterOutside, "cluster_outside"},
    {StorageFault::ClusterOverlap, "cluster_overlap"},
    {StorageFault::ClusterMismatch, "cluster_mismatch"},
    {StorageFault::ClusterOfRemoved, "cluster_of_removed"},
    {StorageFault::RecordWithoutCluster, "record_without_cluster"},
};

/// So many are looked at whatever the data file's length.
constexpr std::uint64_t kManyClusters = 1 << 20;

/// The clusters of an index file, checked one by one while the records go by.
class IndexCheck {
 public:
  IndexCheck(const DataFileCheck& data, StorageReport& report)
      : header_(data.Header()), end_(data.End()), report_(report) {}

  void Load(const std::string& path);
  void Compare(const CheckedRecord& record);
  void Finish() { SkipTo(end_); }

 private:
  ClusterTable Table() { return {units_.data(), header_.key_length, KeyOrder(header_.key_type)}; }
  std::uint64_t OffsetOf(DWORD slot) const {
    return kArrayHeaderBytes + std::uint64_t{slot} * header_.ClusterBytes();
  }
  void Report(StorageFault fault, DWORD slot, const std::string& text) {
    AddFinding(report_, fault, OffsetOf(slot),
               "the cluster of " + PrintableKey(header_, Table().KeyAt(slot)) + " " + text);
  }
  bool ReadUnits(os::File& file);
  void CheckOrder();
  void CheckPlaces();
  void SkipTo(std::uint64_t offset);
  void CompareOne(DWORD slot, const CheckedRecord& record, bool& is_found);

  DataHeader header_;
  std::uint64_t end_;
  StorageReport& report_;
  std::vector<BYTE> units_;
  std::vector<DWORD> by_offset_;  ///< slots of the clusters that lie inside the data file
  std::size_t next_ = 0;
};

void IndexCheck::Load(const std::string& path) {
  std::unique_ptr<os::File> file;
  if (os::Files().Open(path, os::OpenMode::read, file)) {
    AddFinding(report_, StorageFault::IndexFileUnreadable, 0, "the index file cannot be read");
    return;
  }
  if (!ReadUnits(*file)) return;
  CheckOrder();
  CheckPlaces();
}

bool IndexCheck::ReadUnits(os::File& file) {
  std::array<BYTE, kArrayHeaderBytes> start{};
  std::size_t count = 0;
  std::uint64_t size = 0;
  const auto refuse = [&](StorageFault fault, const char* text) {
    AddFinding(report_, fault, 0, text);
    return false;
  };
  if (file.Size(size) || file.ReadAt(0, start.data(), start.size(), count)) {
    return refuse(StorageFault::IndexFileUnreadable, "the index file cannot be read");
  }
  if (count < start.size() || !ArrayHeader::HasSignature(start.data())) {
    return refuse(StorageFault::IndexHeader, "not an index file");
  }
  const ArrayHeader header = ArrayHeader::Decode(start.data());
  if (header.array_id != header_.storage_id || header.unit_size != header_.ClusterBytes()) {
    return refuse(StorageFault::IndexHeader, "the index file of another storage");
  }
  const DWORD bytes = header.data_bytes;
  if (bytes > size - kArrayHeaderBytes || bytes % header_.ClusterBytes() != 0) {
    return refuse(StorageFault::IndexLength, "the header counts clusters that are not there");
  }
  report_.clusters = bytes / header_.ClusterBytes();
  if (report_.clusters > std::max(kManyClusters, end_ / header_.LeastRecord())) {
    return refuse(StorageFault::IndexLength, "far more clusters than the data file has records");
  }
  units_.resize(bytes);
  if (file.ReadAt(kArrayHeaderBytes, units_.data(), bytes, count) || count != bytes) {
    return refuse(StorageFault::IndexFileUnreadable, "the index file cannot be read");
  }
  return true;
}

/// Number keys are compared with their neighbour, which is a shorter way round than to any other.
void IndexCheck::CheckOrder() {
  const auto is_after = [&](DWORD slot) {
    const KeyBytes left = Table().KeyAt(slot - 1);
    const KeyBytes right = Table().KeyAt(slot);
    if (header_.key_type != kNumberKey) return Table().Order().Compare(left, right) > 0;
    const DWORD distance = LoadLittle<DWORD>(left.data()) - LoadLittle<DWORD>(right.data());
    return static_cast<std::int32_t>(distance) > 0;
  };
  for (DWORD slot = 1; slot < report_.clusters; ++slot) {
    if (!is_after(slot)) continue;
    Report(StorageFault::ClusterOrder, slot, "is the first that is not in key order");
    return;
  }
}

void IndexCheck::CheckPlaces() {
  const ClusterTable table = Table();
  DataHeader present = header_;
  present.data_length = end_;
  for (DWORD slot = 0; slot < report_.clusters; ++slot) {
    if (table.IsFree(slot)) {
      Report(StorageFault::ClusterFree, slot, "is a free one");
    } else if (table.PlaceAt(slot).IsWithin(present)) {
      by_offset_.push_back(slot);
    } else {
      Report(StorageFault::ClusterOutside, slot, "names bytes that the data file does not have");
    }
  }
  std::sort(by_offset_.begin(), by_offset_.end(), [&](DWORD left, DWORD right) {
    const auto left_offset = table.PlaceAt(left).offset;
    const auto right_offset = table.PlaceAt(right).offset;
    return left_offset != right_offset ? left_offset < right_offset : left < right;
  });
  std::uint64_t end = 0;
  for (std::size_t i = 0; i < by_offset_.size(); ++i) {
    const RecordPlace place = table.PlaceAt(by_offset_[i]);
    if (i > 0 && place.offset == table.PlaceAt(by_offset_[i - 1]).offset) {
      Report(StorageFault::ClusterDouble, by_offset_[i], "names the record of another one");
    } else if (place.offset < end) {
      Report(StorageFault::ClusterOverlap, by_offset_[i], "names a part of another's record");
    }
    end = std::max(end, place.offset + place.length);
  }
}

/// Clusters that no record has come for.
void IndexCheck::SkipTo(std::uint64_t offset) {
  for (; next_ < by_offset_.size(); ++next_) {
    const std::uint64_t place = Table().PlaceAt(by_offset_[next_]).offset;
    if (place >= offset) return;
    Report(StorageFault::ClusterMismatch, by_offset_[next_],
           "names offset " + std::to_string(place) + ", where no record begins");
  }
}

void IndexCheck::CompareOne(DWORD slot, const CheckedRecord& record, bool& is_found) {
  const ClusterTable table = Table();
  const KeyBytes key = table.KeyAt(slot);
  if (table.PlaceAt(slot) != record.place ||
      !std::equal(key.begin(), key.end(), record.key.begin())) {
    Report(StorageFault::ClusterMismatch, slot, "differs from its record");
  } else if (!record.is_live) {
    Report(StorageFault::ClusterOfRemoved, slot, "names a removed record");
  } else {
    is_found = true;
  }
}

void IndexCheck::Compare(const CheckedRecord& record) {
  SkipTo(record.place.offset);
  bool is_found = false;
  for (; next_ < by_offset_.size(); ++next_) {
    if (Table().PlaceAt(by_offset_[next_]).offset != record.place.offset) break;
    CompareOne(by_offset_[next_], record, is_found);
  }
  if (is_found || !record.is_live) return;
  AddFinding(report_, StorageFault::RecordWithoutCluster, kDataHeaderBytes + record.place.offset,
             "the record of " + PrintableKey(header_, record.key) + " has no cluster");
}

}  // namespace

const char* NameOf(StorageFault fault) {
  for (const FaultName& entry : kNames) {
    if (entry.fault == fault) return entry.name;
  }
  return "unknown";
}

bool IsMendedByLoad(StorageFault fault) {
  return fault == StorageFault::ClusterFree || fault == StorageFault::ClusterDouble ||
         fault == StorageFault::ClusterOrder;
}

StorageReport VerifyStorage(const char* path,
                            const std::function<void(const std::string& key)>& visit) {
  StorageReport report;
  const StoragePair pair = PairInForce(CompactionFiles(path));
  std::unique_ptr<os::File> file;
  if (const auto error = os::Files().Open(NativePath(pair.data), os::OpenMode::read, file)) {
    AddFinding(report, StorageFault::DataFileUnreadable, 0,
               "the data file cannot be read: " + error.message());
    return report;
  }
  auto data = DataFileCheck::Begin(*file, report);
  if (!data) return report;
  IndexCheck index(*data, report);
  index.Load(NativePath(pair.index));
  data->Walk(report, [&](const CheckedRecord& record) {
    index.Compare(record);
    if (visit && record.is_live && record.has_right_checksum)
      visit(KeyText(data->Header(), record.key));
  });
  index.Finish();
  return report;
}

}  // namespace vdstomgr
