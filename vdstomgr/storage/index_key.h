#pragma once

#include <cstdint>

#include "vdstomgr/platform/framework/types.h"
#include "vdstomgr/storage/array_index.h"
#include "vdstomgr/storage/key_order.h"

namespace vdstomgr {

/// Where an index finds the key of a unit, and how keys compare: by one rank after the other, each
/// of which stands for the next eight bytes. What reaches beyond the unit is not read.
class IndexKey {
 public:
  using Kind = CRkFileArrayIndex::INDEX_TYPE;
  using Compare = CRkFileArrayIndex::COMPARE;

  static constexpr std::size_t kRankBytes = 8;

  IndexKey() = default;
  IndexKey(Kind kind, int length, int offset, Compare compare);

  Kind GetKind() const { return kind_; }
  Compare GetCompare() const { return compare_; }
  int GetOffset() const { return offset_; }
  /// Whether keys have ranks: all kinds but the caller's own and unknown ones.
  bool IsRanked() const;
  void SetUnitSize(int bytes);
  /// Numbers compare by their signed difference, which only orders those within 2^31 of each other:
  /// they are ordered from half the circle of numbers before that of `first` on.
  void SetOriginAt(const void* first);

  /// The most bytes that a key of these units has.
  std::size_t Limit() const { return limit_; }
  /// The bytes of a binary key where units have room for it.
  std::size_t BinarySize() const { return length_ < 0 ? 0 : static_cast<std::size_t>(length_); }

  /// The key of a unit; a text may end before the bytes do, at a 0.
  KeyBytes Of(const void* unit) const {
    return {limit_ == 0 ? nullptr : static_cast<const BYTE*>(unit) + offset_, limit_};
  }
  /// A text or the bytes of a binary key, as what a unit would have in that place.
  KeyBytes OfText(const char* text) const;
  KeyBytes OfBytes(const BYTE* bytes) const;

  /// The rank of the key's bytes from `at` on, before which it must not have ended.
  std::uint64_t Rank(KeyBytes key, std::size_t at) const;
  /// Whether keys with this rank at `at` can differ later.
  bool HasMore(std::uint64_t rank, std::size_t at) const;
  /// Compares keys that are equal up to `at`: negative, 0 or positive.
  int CompareFrom(KeyBytes left, KeyBytes right, std::size_t at) const;
  /// Up to where keys that are equal up to `at` stay so; not beyond `limit`.
  std::size_t SharedStart(KeyBytes left, KeyBytes right, std::size_t at, std::size_t limit) const;

 private:
  std::size_t LimitFor(int unit_size) const;

  Kind kind_ = CRkFileArrayIndex::INDEX_STRING;
  int length_ = 0;
  int offset_ = 0;
  std::size_t limit_ = 0;
  Compare compare_ = nullptr;
  KeyOrder order_;
};

}  // namespace vdstomgr
