#include "vdstomgr/storage/record_format.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <iterator>

#include "vdstomgr/storage/little_endian.h"

namespace vdstomgr {
namespace {

constexpr BYTE kStart[] = {0xFF, 0, 'D', 'A', 'T', '0', 0, 0, '0', '1', '0', '0'};
constexpr std::size_t kSignatureBytes = 8;
constexpr std::size_t kStorageIdAt = 12;
constexpr std::size_t kKeyTypeAt = 20;
constexpr std::size_t kKeyLengthAt = 22;

constexpr BYTE kStartMark = 0xFF;
constexpr std::size_t kStateAt = 1;
constexpr std::size_t kLengthAt = 2;
constexpr std::size_t kCrcAt = 6;
constexpr std::size_t kReservedBytes = 2;

/// The key, with zeros up to its full length and for the reserved bytes after it.
BYTE* PutKey(BYTE* at, std::size_t key_length, KeyBytes key) {
  assert(key.size() <= key_length);
  BYTE* const end = std::copy(key.begin(), key.end(), at);
  BYTE* const next = at + key_length + kReservedBytes;
  std::fill(end, next, BYTE{0});
  return next;
}

}  // namespace

std::optional<DataHeader> DataHeader::Decode(const BYTE* bytes) {
  if (std::memcmp(bytes, kStart, kSignatureBytes) != 0) return std::nullopt;
  return DecodeAny(bytes);
}

DataHeader DataHeader::DecodeAny(const BYTE* bytes) {
  return {LoadLittle<DWORD>(bytes + kStorageIdAt), LoadLittle<WORD>(bytes + kKeyTypeAt),
          LoadLittle<WORD>(bytes + kKeyLengthAt), LoadLittle<std::uint64_t>(bytes + kDataLengthAt)};
}

bool DataHeader::HasKnownVersion(const BYTE* bytes) {
  return std::memcmp(bytes, kStart, sizeof kStart) == 0;
}

std::array<BYTE, kDataHeaderBytes> DataHeader::Encode() const {
  std::array<BYTE, kDataHeaderBytes> bytes{};
  std::copy(std::begin(kStart), std::end(kStart), bytes.begin());
  StoreLittle(bytes.data() + kStorageIdAt, storage_id);
  StoreLittle(bytes.data() + kKeyTypeAt, key_type);
  StoreLittle(bytes.data() + kKeyLengthAt, key_length);
  StoreLittle(bytes.data() + kDataLengthAt, data_length);
  return bytes;
}

RecordHead RecordHead::Decode(const BYTE* record) {
  return {record[0], record[kStateAt], LoadLittle<DWORD>(record + kLengthAt),
          LoadLittle<DWORD>(record + kCrcAt)};
}

bool RecordHead::HasStartMark() const {
  return start == kStartMark;
}

void EncodeRecord(BYTE* record, const RecordPlace& place, WORD key_length, KeyBytes key,
                  const BYTE* data) {
  assert(place.length >= kRecordFrameBytes + key_length);
  record[0] = kStartMark;
  record[kStateAt] = static_cast<BYTE>(RecordState::Live);
  StoreLittle(record + kLengthAt, place.length);
  StoreLittle(record + kCrcAt, place.crc);
  const std::size_t data_length = place.length - kRecordFrameBytes - key_length;
  BYTE* const end = PutKey(record + RecordHead::kBytes, key_length, key);
  if (data_length != 0) std::memcpy(end, data, data_length);
  std::memcpy(end + data_length, kEndMark, sizeof kEndMark);
}

void EncodeRemovedHead(BYTE* head, DWORD length, DWORD crc) {
  head[0] = kStartMark;
  MarkRemoved(head);
  StoreLittle(head + kLengthAt, length);
  StoreLittle(head + kCrcAt, crc);
}

void MarkRemoved(BYTE* record) {
  record[kStateAt] = static_cast<BYTE>(RecordState::Removed);
}

bool HasEndMark(const BYTE* record_end) {
  return std::memcmp(record_end - sizeof kEndMark, kEndMark, sizeof kEndMark) == 0;
}

bool HasLiveMarks(const BYTE* record, DWORD length) {
  const RecordHead head = RecordHead::Decode(record);
  return head.HasStartMark() && head.IsLive() && HasEndMark(record + length);
}

bool IsLiveRecord(const BYTE* record, const RecordPlace& place) {
  const RecordHead head = RecordHead::Decode(record);
  return head.length == place.length && head.crc == place.crc && HasLiveMarks(record, place.length);
}

void EncodeCluster(BYTE* cluster, WORD key_length, KeyBytes key, const RecordPlace& place) {
  BYTE* const rest = PutKey(cluster, key_length, key);
  StoreLittle(rest, place.crc);
  StoreLittle(rest + 4, place.offset);
  StoreLittle(rest + 12, place.length);
}

RecordPlace DecodePlace(const BYTE* cluster, WORD key_length) {
  const BYTE* const rest = cluster + key_length + kReservedBytes;
  return {LoadLittle<std::uint64_t>(rest + 4), LoadLittle<DWORD>(rest + 12),
          LoadLittle<DWORD>(rest)};
}

}  // namespace vdstomgr
