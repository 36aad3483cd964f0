#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "vdstomgr/platform/framework/types.h"

namespace vdstomgr {

/// What the data file's header says about the keys.
inline constexpr WORD kNumberKey = 0x44;
inline constexpr WORD kStringKey = 0x53;

/// A key as it lies in a file: four little-endian bytes, or a text that ends at its first 0 byte or
/// with the span.
using KeyBytes = std::span<const BYTE>;

/// The bytes of a text as far as a key of `limit` bytes reaches. Null is an empty text.
KeyBytes KeyOfText(const char* text, std::size_t limit);

/// The key order of one storage. Texts compare without the case of ASCII letters. Numbers compare
/// by their signed 32-bit difference, which orders keys that lie within 2^31 of each other on the
/// circle of 32-bit numbers: the order then begins at the number that follows the gap. Keys all
/// around the circle have no beginning; they are ordered from half a circle before the origin on,
/// so that sorting and searching stay well defined.
class KeyOrder {
 public:
  KeyOrder() = default;
  explicit KeyOrder(WORD key_type) : is_number_(key_type == kNumberKey) {}

  bool IsNumber() const { return is_number_; }
  DWORD Origin() const { return origin_; }
  void SetOrigin(DWORD origin) { origin_ = origin; }

  /// The first part of a key: keys of different rank are ordered by it, and number keys of one rank
  /// are equal.
  std::uint64_t Rank(KeyBytes key) const;
  /// Negative, 0 or positive.
  int Compare(KeyBytes left, KeyBytes right) const;
  /// As Compare, for keys of one rank.
  int CompareRest(KeyBytes left, KeyBytes right) const;
  /// Whether a text key begins with `prefix`, in any case.
  static bool StartsWith(KeyBytes key, KeyBytes prefix);

 private:
  bool is_number_ = false;
  DWORD origin_ = 0;
};

}  // namespace vdstomgr
