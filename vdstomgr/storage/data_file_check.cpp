#include "vdstomgr/storage/data_file_check.h"

#include <algorithm>
#include <cstring>

#include "vdstomgr/platform/common/crc32.h"
#include "vdstomgr/storage/little_endian.h"

namespace vdstomgr {
namespace {

constexpr std::size_t kWindowBytes = 1 << 20;
constexpr std::uint64_t kCandidateCost = 256;

}  // namespace

void AddFinding(StorageReport& report, StorageFault fault, std::uint64_t offset, std::string text) {
  if (!IsMendedByLoad(fault)) report.is_sound = false;
  ++report.finding_count;
  if (report.findings.size() >= StorageReport::kMostFindings) return;
  report.findings.push_back({fault, offset, std::move(text)});
}

std::string KeyText(const DataHeader& header, KeyBytes key) {
  if (header.key_type == kNumberKey) return std::to_string(LoadLittle<DWORD>(key.data()));
  return {key.begin(), std::find(key.begin(), key.end(), BYTE{0})};
}

std::string PrintableKey(const DataHeader& header, KeyBytes key) {
  std::string text = KeyText(header, key);
  if (header.key_type == kNumberKey) return text;
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
  return '"' + text + '"';
}

DataFileCheck::DataFileCheck(os::File& file, const DataHeader& header, std::uint64_t end)
    : file_(&file), header_(header), end_(end), key_(header.key_length), budget_(0) {
  constexpr std::uint64_t kLeast = 1 << 26;
  constexpr std::uint64_t kTimes = 8;
  budget_ = kLeast + kTimes * end;
}

std::optional<DataFileCheck> DataFileCheck::Begin(os::File& file, StorageReport& report) {
  std::array<BYTE, kDataHeaderBytes> bytes;
  std::size_t count = 0;
  std::uint64_t size = 0;
  const auto refuse = [&](StorageFault fault, const char* text) {
    AddFinding(report, fault, 0, text);
    return std::nullopt;
  };
  if (file.Size(size) || file.ReadAt(0, bytes.data(), bytes.size(), count)) {
    return refuse(StorageFault::DataFileUnreadable, "the data file cannot be read");
  }
  if (count < bytes.size()) {
    return refuse(StorageFault::DataHeaderShort, "the data file ends inside its header");
  }
  const auto header = DataHeader::Decode(bytes.data());
  if (!header) return refuse(StorageFault::DataSignature, "not a data file");
  if (!DataHeader::HasKnownVersion(bytes.data())) {
    return refuse(StorageFault::DataVersion, "a data file of an unknown version");
  }
  if (!header->HasKnownKeys()) return refuse(StorageFault::DataKeyKind, "unknown kind of keys");
  const std::uint64_t present = size - kDataHeaderBytes;
  if (header->data_length > present) {
    AddFinding(report, StorageFault::DataLength, kDataLengthAt,
               "the header counts " + std::to_string(header->data_length) +
                   " bytes of records, the file has " + std::to_string(present));
  }
  return DataFileCheck(file, *header, std::min(header->data_length, present));
}

bool DataFileCheck::ReadInto(std::uint64_t offset, BYTE* bytes, std::size_t size) {
  std::size_t count = 0;
  const auto error = file_->ReadAt(kDataHeaderBytes + offset, bytes, size, count);
  if (error) read_error_ = error;
  return !error && count == size;
}

const BYTE* DataFileCheck::Read(std::uint64_t offset, std::size_t size) {
  const bool is_in_window = offset >= window_at_ && offset - window_at_ <= window_.size() &&
                            size <= window_.size() - (offset - window_at_);
  if (!is_in_window) {
    window_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(end_ - offset, kWindowBytes)));
    window_at_ = offset;
    if (size > window_.size() || !ReadInto(offset, window_.data(), window_.size())) {
      window_.clear();
      return nullptr;
    }
  }
  return window_.data() + (offset - window_at_);
}

std::optional<RecordHead> DataFileCheck::HeadAt(std::uint64_t offset) {
  if (end_ - offset < RecordHead::kBytes) return std::nullopt;
  const BYTE* const bytes = Read(offset, RecordHead::kBytes);
  if (bytes == nullptr) return std::nullopt;
  const RecordHead head = RecordHead::Decode(bytes);
  if (!head.HasStartMark() || !(head.IsLive() || head.IsRemoved())) return std::nullopt;
  return head.length >= header_.LeastRecord() ? std::optional(head) : std::nullopt;
}

bool DataFileCheck::IsRecordAt(std::uint64_t offset, const RecordHead& head) {
  if (head.length > end_ - offset) return false;
  BYTE mark[kEndMarkBytes];
  return ReadInto(offset + head.length - kEndMarkBytes, mark, kEndMarkBytes) &&
         HasEndMark(mark + kEndMarkBytes);
}

bool DataFileCheck::IsGoodRecord(const RecordPlace& place) {
  if (!place.IsWithin(header_)) return false;
  const auto head = HeadAt(place.offset);
  return head && head->IsLive() && head->length == place.length && head->crc == place.crc &&
         IsRecordAt(place.offset, *head) && HasRightChecksum(place.offset, *head);
}

std::optional<DWORD> DataFileCheck::ChecksumAt(std::uint64_t offset, DWORD length) {
  std::uint64_t at = offset + header_.DataInRecord();
  const std::uint64_t end = offset + length - kEndMarkBytes;
  DWORD crc = CRkCRC32Generator::GenCRC32(nullptr, 0);
  while (at < end) {
    const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(end - at, kWindowBytes));
    const BYTE* const bytes = Read(at, size);
    if (bytes == nullptr) return std::nullopt;
    crc = CRkCRC32Generator::GenCRC32(bytes, size, crc);
    at += size;
  }
  return crc;
}

/// Whether what stands here is the beginning of a record that the file does not have all of.
bool DataFileCheck::IsCutOff(std::uint64_t offset) {
  if (const auto head = HeadAt(offset)) return head->length > end_ - offset;
  const BYTE* const start = Read(offset, 1);
  return end_ - offset < RecordHead::kBytes && start != nullptr &&
         RecordHead{*start, 0, 0, 0}.HasStartMark();
}

bool DataFileCheck::Pay(std::uint64_t cost) {
  if (cost > budget_) return false;
  budget_ -= cost;
  return true;
}

/// The offset of the next record with the right checksum that begins before the limit, or that.
std::uint64_t DataFileCheck::FindRecord(std::uint64_t offset, std::uint64_t limit) {
  for (; offset < limit; ++offset) {
    const auto ahead = static_cast<std::size_t>(std::min<std::uint64_t>(limit - offset, 1 << 12));
    const BYTE* const bytes = Read(offset, ahead);
    if (bytes == nullptr) return limit;
    const void* const start = std::memchr(bytes, 0xFF, ahead);
    if (start == nullptr) {
      offset += ahead - 1;
      continue;
    }
    offset += static_cast<std::uint64_t>(static_cast<const BYTE*>(start) - bytes);
    const auto head = HeadAt(offset);
    if (!head) continue;
    if (!Pay(kCandidateCost)) return limit;
    if (!IsRecordAt(offset, *head)) continue;
    if (!Pay(head->length)) return limit;
    if (HasRightChecksum(offset, *head)) return offset;
  }
  return limit;
}

void DataFileCheck::Visit(std::uint64_t offset, const RecordHead& head, bool has_right_checksum,
                          StorageReport& report,
                          const std::function<void(const CheckedRecord&)>& visit) {
  CheckedRecord record;
  record.place = {offset, head.length, head.crc};
  record.is_live = head.IsLive();
  record.has_right_checksum = has_right_checksum;
  if (!ReadInto(offset + RecordHead::kBytes, key_.data(), key_.size())) return;
  record.key = key_;
  if (!record.is_live) {
    ++report.removed_records;
  } else if (record.has_right_checksum) {
    ++report.live_records;
    report.live_bytes += head.length;
  } else {
    ++report.damaged_records;
    AddFinding(report, StorageFault::RecordChecksum, kDataHeaderBytes + offset,
               "the data of " + PrintableKey(header_, record.key) + ", a record of " +
                   std::to_string(head.length) + " bytes, has another checksum");
  }
  visit(record);
}

void DataFileCheck::Walk(StorageReport& report,
                         const std::function<void(const CheckedRecord&)>& visit) {
  report.data_bytes = end_;
  for (std::uint64_t offset = 0; offset < end_;) {
    const auto head = HeadAt(offset);
    const bool is_record = head && IsRecordAt(offset, *head);
    const bool is_right = is_record && HasRightChecksum(offset, *head);
    const std::uint64_t limit = is_record ? offset + head->length : end_;
    const std::uint64_t next = is_right ? limit : FindRecord(offset + 1, limit);
    if (is_record && next == limit) {
      Visit(offset, *head, is_right, report, visit);
      offset = limit;
      continue;
    }
    const bool is_tail = next == end_ && IsCutOff(offset);
    ++report.damaged_records;
    AddFinding(report, is_tail ? StorageFault::RecordTailShort : StorageFault::RecordDamaged,
               kDataHeaderBytes + offset,
               std::to_string(next - offset) + (is_tail ? " bytes of a record that is not all there"
                                                        : " bytes that are no record"));
    offset = next;
  }
  if (read_error_) {
    AddFinding(report, StorageFault::DataFileUnreadable, 0,
               "the data file cannot be read in places: " + read_error_.message());
  }
}

}  // namespace vdstomgr
