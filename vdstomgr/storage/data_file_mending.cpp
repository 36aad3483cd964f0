#include "vdstomgr/storage/data_file_mending.h"

#include <algorithm>
#include <array>

namespace vdstomgr {

void DataFileMending::ExtendTo(std::uint64_t end, bool is_damaged) {
  if (end == open_.end) return;
  open_.end = end;
  open_.is_damaged = open_.is_damaged || is_damaged;
}

void DataFileMending::Take(const CheckedRecord& record) {
  const std::uint64_t end = record.place.offset + record.place.length;
  ExtendTo(record.place.offset, true);
  if (!record.is_live || !record.has_right_checksum) return ExtendTo(end, record.is_live);
  const bool is_in_way = open_.is_damaged && open_.Length() < header_.LeastRecord();
  if (is_in_way && Move(record)) return ExtendTo(end, true);
  if (open_.is_damaged) damaged_.push_back(open_);
  open_ = {end, end, false};
  add_(record.key, record.place);
}

bool DataFileMending::Move(const CheckedRecord& record) {
  std::vector<BYTE> bytes(record.place.length);
  std::size_t count = 0;
  if (file_.ReadAt(kDataHeaderBytes + record.place.offset, bytes.data(), bytes.size(), count) ||
      count < bytes.size()) {
    return false;
  }
  moved_.push_back(std::move(bytes));
  return true;
}

void DataFileMending::Finish() {
  ExtendTo(header_.data_length, true);
  if (open_.is_damaged) header_.data_length = open_.begin;
  std::uint64_t end = header_.data_length;
  for (const std::vector<BYTE>& record : moved_) {
    const auto length = static_cast<DWORD>(record.size());
    add_({record.data() + RecordHead::kBytes, header_.key_length},
         {end, length, RecordHead::Decode(record.data()).crc});
    end += length;
  }
}

/// The header goes last: until then nothing counts what was appended.
std::error_code DataFileMending::Append() {
  for (const std::vector<BYTE>& record : moved_) {
    if (const auto error = Write(header_.data_length, record.data(), record.size())) return error;
    header_.data_length += record.size();
  }
  std::array<BYTE, kDataHeaderBytes> old{};
  std::size_t count = 0;
  const auto wanted = header_.Encode();
  if (const auto error = file_.ReadAt(0, old.data(), old.size(), count)) return error;
  return old == wanted ? std::error_code() : file_.WriteAt(0, wanted.data(), wanted.size());
}

/// The head goes last, and in one piece: a process killed before leaves the damage that there was.
std::error_code DataFileMending::CoverPiece(DataFileCheck& check, std::uint64_t offset,
                                            DWORD length) {
  BYTE head[RecordHead::kBytes];
  EncodeRemovedHead(head, length, check.ChecksumAt(offset, length).value_or(0));
  const auto error = Write(offset + length - kEndMarkBytes, kEndMark, kEndMarkBytes);
  return error ? error : Write(offset, head, sizeof head);
}

std::error_code DataFileMending::Cover() {
  constexpr std::uint64_t kPiece = std::uint64_t{1} << 30;
  DataFileCheck check(file_, header_);
  for (const Stretch& stretch : damaged_) {
    std::uint64_t at = stretch.begin;
    while (at < stretch.end) {
      const std::uint64_t left = stretch.end - at;
      const std::uint64_t length = left > kPiece + header_.LeastRecord() ? kPiece : left;
      if (const auto error = CoverPiece(check, at, static_cast<DWORD>(length))) return error;
      at += length;
    }
  }
  return damaged_.empty() ? std::error_code() : file_.Sync();
}

}  // namespace vdstomgr
