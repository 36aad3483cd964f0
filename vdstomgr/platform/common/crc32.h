#pragma once

#include <cstddef>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/types.h"

class VDSTO_API CRkCRC32Generator {
 public:
  /// The CRC-32 of zip and PNG files (reflected polynomial 0xEDB88320) of `length` bytes.
  /// `previous` is the result for the bytes that came before, so that a range can be taken in
  /// pieces.
  static DWORD GenCRC32(const BYTE* data, std::size_t length, DWORD previous = 0);
};
