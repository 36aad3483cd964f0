#include "vdstomgr/storage/read_storage.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>
#include <vector>

#include "vdstomgr/platform/common/crc32.h"
#include "vdstomgr/platform/os/file.h"
#include "vdstomgr/storage/array_format.h"
#include "vdstomgr/storage/cluster_table.h"
#include "vdstomgr/storage/compaction_files.h"
#include "vdstomgr/storage/little_endian.h"

namespace vdstomgr {
namespace {

constexpr int kAttempts = 5;
constexpr std::chrono::milliseconds kPause{10};
constexpr std::size_t kChunkBytes = std::size_t{1} << 20;

bool ReadWhole(os::File& file, std::uint64_t offset, void* buffer, std::size_t size) {
  std::size_t count = 0;
  return !file.ReadAt(offset, buffer, size, count) && count == size;
}

/// One look at the two files as they are now.
class Glance {
 public:
  Glance(const char* path, WORD key_type, KeyBytes key) : key_type_(key_type), key_(key) {
    const StoragePair pair = PairInForce(CompactionFiles(path));
    is_readable_ = OpenData(pair.data) && OpenIndex(pair.index);
  }

  StorageLookup Find(CBinData& data) {
    std::vector<RecordPlace> places;
    if (!is_readable_ || !ReadPlaces(places)) return StorageLookup::Unreadable;
    std::sort(places.begin(), places.end(),
              [](const auto& left, const auto& right) { return left.offset > right.offset; });
    for (const RecordPlace& place : places) {
      if (ReadRecord(place, data)) return StorageLookup::Found;
    }
    return StorageLookup::NoRecord;
  }

 private:
  bool OpenData(const CString& path) {
    std::array<BYTE, kDataHeaderBytes> start{};
    if (os::Files().Open(NativePath(path), os::OpenMode::read, data_)) return false;
    if (!ReadWhole(*data_, 0, start.data(), start.size())) return false;
    const auto header = DataHeader::Decode(start.data());
    if (!header || !header->HasKnownKeys() || header->key_type != key_type_) return false;
    header_ = *header;
    if (key_.size() > header_.key_length) key_ = key_.first(header_.key_length);
    return true;
  }

  bool OpenIndex(const CString& path) {
    std::array<BYTE, kArrayHeaderBytes> start{};
    if (os::Files().Open(NativePath(path), os::OpenMode::read, index_)) return false;
    if (!ReadWhole(*index_, 0, start.data(), start.size())) return false;
    const ArrayHeader header = ArrayHeader::Decode(start.data());
    cluster_bytes_ = header.data_bytes;
    return header.array_id == header_.storage_id && header.unit_size == header_.ClusterBytes();
  }

  /// Where the clusters say that there are records with the key.
  bool ReadPlaces(std::vector<RecordPlace>& places) {
    const std::size_t unit = header_.ClusterBytes();
    const std::size_t chunk = std::max<std::size_t>(kChunkBytes / unit, 1) * unit;
    std::vector<BYTE> units(std::min<std::size_t>(chunk, cluster_bytes_ / unit * unit));
    const KeyOrder order(header_.key_type);
    const ClusterTable table(units.data(), header_.key_length, order);
    for (std::size_t at = 0; at + unit <= cluster_bytes_; at += units.size()) {
      units.resize(std::min(units.size(), (cluster_bytes_ - at) / unit * unit));
      if (!ReadWhole(*index_, kArrayHeaderBytes + at, units.data(), units.size())) return false;
      for (DWORD slot = 0; slot < units.size() / unit; ++slot) {
        if (order.Compare(table.KeyAt(slot), key_) == 0) places.push_back(table.PlaceAt(slot));
      }
    }
    return true;
  }

  /// The writer may have removed the record, or written another one's cluster over the one that was
  /// read half.
  bool ReadRecord(const RecordPlace& place, CBinData& data) {
    std::uint64_t size = 0;
    if (data_->Size(size) || place.length < header_.LeastRecord() || place.length > size) {
      return false;
    }
    std::vector<BYTE> record(place.length);
    if (place.offset > size ||
        !ReadWhole(*data_, kDataHeaderBytes + place.offset, record.data(), record.size())) {
      return false;
    }
    const BYTE* const key = record.data() + RecordHead::kBytes;
    const BYTE* const bytes = record.data() + header_.DataInRecord();
    const DWORD length = place.length - header_.LeastRecord();
    const bool is_it = IsLiveRecord(record.data(), place) &&
                       KeyOrder(header_.key_type).Compare({key, header_.key_length}, key_) == 0 &&
                       CRkCRC32Generator::GenCRC32(bytes, length) == place.crc;
    if (is_it) data.SetData(bytes, length);
    return is_it;
  }

  WORD key_type_;
  KeyBytes key_;
  std::unique_ptr<os::File> data_;
  std::unique_ptr<os::File> index_;
  DataHeader header_;
  std::size_t cluster_bytes_ = 0;
  bool is_readable_ = false;
};

/// A writer that compacts renames the files, and one that sorts moves clusters: both are over soon.
StorageLookup Read(const char* path, WORD key_type, KeyBytes key, CBinData& data) {
  data.Reset();
  auto answer = StorageLookup::Unreadable;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    if (attempt != 0) std::this_thread::sleep_for(kPause);
    answer = Glance(path, key_type, key).Find(data);
    if (answer == StorageLookup::Found) break;
  }
  return answer;
}

}  // namespace

StorageLookup ReadStorage(const char* path, const char* key, CBinData& data) {
  data.Reset();
  if (key == nullptr) return StorageLookup::NoRecord;
  return Read(path, kStringKey, KeyOfText(key, std::strlen(key)), data);
}

StorageLookup ReadStorage(const char* path, DWORD key, CBinData& data) {
  BYTE bytes[sizeof key];
  StoreLittle(bytes, key);
  return Read(path, kNumberKey, bytes, data);
}

}  // namespace vdstomgr
