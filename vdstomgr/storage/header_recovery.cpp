#include "vdstomgr/storage/header_recovery.h"

#include <algorithm>
#include <array>
#include <limits>

#include "vdstomgr/storage/data_file_check.h"
#include "vdstomgr/storage/storage_files.h"

namespace vdstomgr {
namespace {

/// So many clusters may name what is not there before their index is not believed.
constexpr std::size_t kMostLies = 1000;

bool HasKeysOf(const OldIndex& index, const DataHeader& header) {
  return index.header.unit_size == header.ClusterBytes();
}

/// The header with the index file's key length; nothing when that cannot be one.
std::optional<DataHeader> WithKeysOf(const OldIndex& index, DataHeader header) {
  const DWORD unit = index.header.unit_size;
  constexpr DWORD kLongest = std::numeric_limits<WORD>::max();
  if (!index.has_header || unit < kClusterFrameBytes || unit - kClusterFrameBytes > kLongest) {
    return std::nullopt;
  }
  header.key_length = static_cast<WORD>(unit - kClusterFrameBytes);
  if (!header.HasKnownKeys() && header.key_length != sizeof(DWORD)) header.key_type = kStringKey;
  return header.HasKnownKeys() ? std::optional(header) : std::nullopt;
}

std::uint64_t CountRecords(os::File& data, const DataHeader& header) {
  StorageReport ignored;
  std::uint64_t count = 0;
  DataFileCheck(data, header).Walk(ignored, [&](const CheckedRecord& record) {
    count += record.has_right_checksum;
  });
  return count;
}

/// Where the last good record ends that a cluster names beyond `least`; `least` without one.
std::uint64_t EndByClusters(os::File& data, DataHeader header, const OldIndex& index,
                            std::uint64_t least, std::uint64_t most) {
  std::vector<RecordPlace> places;
  header.data_length = most;
  for (std::size_t i = 0; HasKeysOf(index, header) && i < index.Count(); ++i) {
    const BYTE* const cluster = index.units.data() + i * header.ClusterBytes();
    const RecordPlace place = DecodePlace(cluster, header.key_length);
    if (place.IsWithin(header) && place.offset + place.length > least) places.push_back(place);
  }
  std::sort(places.begin(), places.end(),
            [](const auto& left, const auto& right) { return left.offset > right.offset; });
  places.resize(std::min(places.size(), kMostLies));
  DataFileCheck check(data, header);
  const auto last = std::find_if(places.begin(), places.end(),
                                 [&](const auto& place) { return check.IsGoodRecord(place); });
  return last == places.end() ? least : last->offset + last->length;
}

/// A length that the file has. One that it does not have says nothing: the clusters know better
/// than slack, in which old records may lie.
std::uint64_t RecoverLength(os::File& data, const DataHeader& header, const OldIndex& index,
                            std::uint64_t present) {
  if (header.data_length <= present) {
    return EndByClusters(data, header, index, header.data_length, present);
  }
  const std::uint64_t end = EndByClusters(data, header, index, 0, present);
  return end == 0 ? present : end;
}

}  // namespace

OldIndex OldIndex::Read(const CString& path, std::uint64_t data_file_bytes) {
  constexpr std::uint64_t kMany = std::uint64_t{64} << 20;
  OldIndex index;
  std::unique_ptr<os::File> file;
  std::array<BYTE, kArrayHeaderBytes> start{};
  std::size_t count = 0;
  if (os::Files().Open(NativePath(path), os::OpenMode::read, file) ||
      file->ReadAt(0, start.data(), start.size(), count) || count < start.size()) {
    return index;
  }
  index.has_header = ArrayHeader::HasSignature(start.data());
  index.header = ArrayHeader::Decode(start.data());
  const std::uint64_t most = std::max(kMany, 4 * data_file_bytes);
  index.units.resize(
      static_cast<std::size_t>(std::min<std::uint64_t>(index.header.data_bytes, most)));
  (void)file->ReadAt(kArrayHeaderBytes, index.units.data(), index.units.size(), count);
  index.units.resize(count);
  return index;
}

std::optional<DataHeader> RecoverHeader(os::File& data, const OldIndex& index) {
  std::array<BYTE, kDataHeaderBytes> bytes{};
  std::size_t count = 0;
  std::uint64_t size = 0;
  if (data.Size(size) || data.ReadAt(0, bytes.data(), bytes.size(), count) || count < bytes.size())
    return std::nullopt;
  const std::uint64_t present = size - kDataHeaderBytes;
  DataHeader said = DataHeader::DecodeAny(bytes.data());
  const bool is_whole = DataHeader::HasKnownVersion(bytes.data()) && said.HasKnownKeys();
  const bool agree = is_whole && index.has_header && HasKeysOf(index, said);
  if (agree || (is_whole && said.data_length == 0)) {
    said.data_length = RecoverLength(data, said, index, present);
    return said;
  }
  std::optional<DataHeader> best;
  std::uint64_t most_records = 0;
  for (auto header : {std::optional(said), WithKeysOf(index, said)}) {
    if (!header || !header->HasKnownKeys()) continue;
    header->data_length = RecoverLength(data, *header, index, present);
    const std::uint64_t records = CountRecords(data, *header);
    if (records > most_records) best = header;
    most_records = std::max(most_records, records);
  }
  return best;
}

}  // namespace vdstomgr
