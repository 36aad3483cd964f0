#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "vdstomgr/storage/key_order.h"

/// The bytes of a record storage's two files; docs/file-formats.md is their description.
namespace vdstomgr {

inline constexpr std::size_t kDataHeaderBytes = 284;
inline constexpr std::size_t kDataLengthAt = 24;  ///< in the header of the data file
/// What a record has besides its key and data.
inline constexpr DWORD kRecordFrameBytes = 14;
inline constexpr BYTE kEndMark[] = {0x00, 0xFF};
inline constexpr DWORD kEndMarkBytes = sizeof kEndMark;
/// What a cluster has besides its key.
inline constexpr DWORD kClusterFrameBytes = 18;

/// What the header of a data file says.
struct DataHeader {
  DWORD storage_id = 0;
  WORD key_type = 0;
  WORD key_length = 0;
  std::uint64_t data_length = 0;

  /// Nothing unless the bytes begin with the signature. The values may still be lies.
  static std::optional<DataHeader> Decode(const BYTE* bytes);
  /// As Decode, whatever the signature.
  static DataHeader DecodeAny(const BYTE* bytes);
  /// Whether a header is of the version that Encode writes.
  static bool HasKnownVersion(const BYTE* bytes);
  std::array<BYTE, kDataHeaderBytes> Encode() const;

  DWORD ClusterBytes() const { return key_length + kClusterFrameBytes; }
  /// The length of a record without data.
  DWORD LeastRecord() const { return key_length + kRecordFrameBytes; }
  /// Where in a record its data begins.
  DWORD DataInRecord() const { return LeastRecord() - kEndMarkBytes; }
  bool HasKnownKeys() const {
    return key_type == kStringKey || (key_type == kNumberKey && key_length == sizeof(DWORD));
  }
};

/// Where a record lies and what it should be; with its key, a cluster.
struct RecordPlace {
  std::uint64_t offset = 0;  ///< from the end of the data file's header on
  DWORD length = 0;          ///< of the whole record
  DWORD crc = 0;             ///< of its data

  /// Whether it lies among the records that a header counts.
  bool IsWithin(const DataHeader& header) const {
    return length >= header.LeastRecord() && length <= header.data_length &&
           offset <= header.data_length - length;
  }
  friend bool operator==(const RecordPlace&, const RecordPlace&) = default;
};

enum class RecordState : BYTE { Live = 0x11, Removed = 0x22 };

/// The first bytes of a record, before its key.
struct RecordHead {
  static constexpr std::size_t kBytes = 10;

  BYTE start = 0;
  BYTE state = 0;
  DWORD length = 0;
  DWORD crc = 0;

  static RecordHead Decode(const BYTE* record);
  bool HasStartMark() const;
  bool IsLive() const { return state == static_cast<BYTE>(RecordState::Live); }
  bool IsRemoved() const { return state == static_cast<BYTE>(RecordState::Removed); }
};

/// Writes a live record of `place.length` bytes. Shorter keys are filled up with zeros.
void EncodeRecord(BYTE* record, const RecordPlace& place, WORD key_length, KeyBytes key,
                  const BYTE* data);
/// The first RecordHead::kBytes of a removed record.
void EncodeRemovedHead(BYTE* head, DWORD length, DWORD crc);
/// Makes a record a removed one.
void MarkRemoved(BYTE* record);
bool HasEndMark(const BYTE* record_end);
/// Whether the bytes are a live record by its marks and state, whatever it says of length and
/// checksum.
bool HasLiveMarks(const BYTE* record, DWORD length);
/// Whether the bytes are a live record, with both its marks, of just this length and checksum.
bool IsLiveRecord(const BYTE* record, const RecordPlace& place);

void EncodeCluster(BYTE* cluster, WORD key_length, KeyBytes key, const RecordPlace& place);
RecordPlace DecodePlace(const BYTE* cluster, WORD key_length);

}  // namespace vdstomgr
