#pragma once

#include <cstdint>

#include "vdstomgr/storage/record_format.h"

namespace vdstomgr {

/// A cluster as the key order sees it: `slot` is its place among the units of the index file,
/// `rank` the first part of its key (KeyOrder::Rank), kept beside it so that a search reads few
/// clusters.
struct RankedSlot {
  std::uint64_t rank = 0;
  DWORD slot = 0;
};

/// The clusters of an index file where they lie, and their order. Good until the file grows.
class ClusterTable {
 public:
  ClusterTable() = default;
  ClusterTable(BYTE* units, WORD key_length, const KeyOrder& order)
      : units_(units), key_length_(key_length), order_(order) {}

  BYTE* Unit(DWORD slot) const { return units_ + std::size_t{slot} * UnitBytes(); }
  std::size_t UnitBytes() const { return key_length_ + std::size_t{kClusterFrameBytes}; }
  KeyBytes KeyAt(DWORD slot) const { return {Unit(slot), key_length_}; }
  RecordPlace PlaceAt(DWORD slot) const { return DecodePlace(Unit(slot), key_length_); }
  const KeyOrder& Order() const { return order_; }
  RankedSlot Ranked(DWORD slot) const { return {order_.Rank(KeyAt(slot)), slot}; }

  /// Whether a cluster of the rank of `key` stands before the key (or with it).
  bool IsBefore(DWORD slot, KeyBytes key) const { return order_.CompareRest(KeyAt(slot), key) < 0; }
  bool IsUpTo(DWORD slot, KeyBytes key) const { return order_.CompareRest(KeyAt(slot), key) <= 0; }
  /// The order of two clusters of one rank: by the rest of the key, then the older record first, so
  /// that equal keys keep their places. Never equal for two slots.
  bool IsBefore(DWORD left, DWORD right) const;

  /// A cluster whose length is 0 is nobody's: one that was being overwritten when the process died.
  bool IsFree(DWORD slot) const { return PlaceAt(slot).length == 0; }
  void Free(DWORD slot) const;
  /// Two clusters that name one record: one was being moved when the process died.
  bool IsSameRecord(DWORD left, DWORD right) const;

  /// Overwrites a cluster whose own content stands somewhere else or is not wanted any more. A
  /// process that dies on the way leaves a free cluster or a second copy, never a mixture.
  void Copy(DWORD to, DWORD from) const;

 private:
  BYTE* units_ = nullptr;
  WORD key_length_ = 0;
  KeyOrder order_;
};

}  // namespace vdstomgr
