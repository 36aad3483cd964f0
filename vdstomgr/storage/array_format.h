#pragma once

#include <array>
#include <cstdint>

#include "vdstomgr/platform/framework/types.h"

/// The bytes of an array file; docs/file-formats.md is their description.
namespace vdstomgr {

inline constexpr std::size_t kArrayHeaderBytes = 32;
inline constexpr std::size_t kArrayDataBytesAt = 24;  ///< in the header

/// What the header of an array file says. The values may be lies.
struct ArrayHeader {
  DWORD array_id = 0;
  DWORD unit_size = 0;
  DWORD data_bytes = 0;  ///< of all units

  static ArrayHeader Decode(const BYTE* bytes);
  /// Whether the bytes begin as Encode's do.
  static bool HasSignature(const BYTE* bytes);
  std::array<BYTE, kArrayHeaderBytes> Encode() const;
};

}  // namespace vdstomgr
