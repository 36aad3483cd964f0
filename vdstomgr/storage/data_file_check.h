#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "vdstomgr/platform/os/file.h"
#include "vdstomgr/storage/record_format.h"
#include "vdstomgr/storage/verify_storage.h"

namespace vdstomgr {

void AddFinding(StorageReport& report, StorageFault fault, std::uint64_t offset, std::string text);

/// A number key in decimal, a text key up to its 0 byte.
std::string KeyText(const DataHeader& header, KeyBytes key);
/// The same for people: a text key in quotes with what is not ASCII as '?'.
std::string PrintableKey(const DataHeader& header, KeyBytes key);

struct CheckedRecord {
  RecordPlace place;
  KeyBytes key;  ///< good during the call
  bool is_live = false;
  bool has_right_checksum = false;
};

/// Walks the records of a data file that may be damaged in any way, reading it only.
class DataFileCheck {
 public:
  /// Reads the header. The file must outlive the check. Nothing when it cannot be walked; the
  /// report says why.
  static std::optional<DataFileCheck> Begin(os::File& file, StorageReport& report);
  /// For a header that is known; the file must have the bytes that it counts.
  DataFileCheck(os::File& file, const DataHeader& header)
      : DataFileCheck(file, header, header.data_length) {}

  const DataHeader& Header() const { return header_; }
  /// The bytes after the header that both the header counts and the file has.
  std::uint64_t End() const { return end_; }

  /// Counts and reports what there is, and hands out every whole record. Behind damage it goes on
  /// with the next record that has the right checksum, which may lie inside one whose length is
  /// wrong.
  void Walk(StorageReport& report, const std::function<void(const CheckedRecord&)>& visit);

  /// Why the system would not read some part, if so: nothing is known of what lies there.
  const std::error_code& ReadError() const { return read_error_; }
  /// Whether these bytes are a live record with its marks and the right checksum.
  bool IsGoodRecord(const RecordPlace& place);
  /// The checksum of the data that a record of this place would have; nothing when it cannot be
  /// read.
  std::optional<DWORD> ChecksumAt(std::uint64_t offset, DWORD length);

 private:
  DataFileCheck(os::File& file, const DataHeader& header, std::uint64_t end);

  /// The bytes at an offset among the records; null when the file cannot be read there. Good until
  /// the next call.
  const BYTE* Read(std::uint64_t offset, std::size_t size);
  bool ReadInto(std::uint64_t offset, BYTE* bytes, std::size_t size);
  std::optional<RecordHead> HeadAt(std::uint64_t offset);
  bool IsRecordAt(std::uint64_t offset, const RecordHead& head);
  bool HasRightChecksum(std::uint64_t offset, const RecordHead& head) {
    return ChecksumAt(offset, head.length) == head.crc;
  }
  bool IsCutOff(std::uint64_t offset);
  std::uint64_t FindRecord(std::uint64_t offset, std::uint64_t limit);
  bool Pay(std::uint64_t cost);
  void Visit(std::uint64_t offset, const RecordHead& head, bool has_right_checksum,
             StorageReport& report, const std::function<void(const CheckedRecord&)>& visit);

  os::File* file_;
  DataHeader header_;
  std::uint64_t end_;
  std::vector<BYTE> window_;
  std::uint64_t window_at_ = 0;
  std::vector<BYTE> key_;
  std::error_code read_error_;
  /// What looking for the next record may still cost, in bytes: a hostile file must not make it
  /// take for ever.
  std::uint64_t budget_;
};

}  // namespace vdstomgr
