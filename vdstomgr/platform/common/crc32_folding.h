#pragma once

#include <cstddef>

#include "vdstomgr/platform/framework/types.h"

namespace vdstomgr {

/// Blocks of this many bytes are what FoldCrc32 takes.
inline constexpr std::size_t kCrcFoldBytes = 64;

/// The remainder of a long text of bytes, made short: 16 bytes that have the same CRC-32 when they
/// are taken with a register of 0.
struct FoldedCrc32 {
  BYTE bytes[16];
};

/// Whether the processor multiplies polynomials; FoldCrc32 must not be called otherwise.
bool CanFoldCrc32();

/// Takes `size` bytes, a positive multiple of kCrcFoldBytes, with the CRC register (the inverted
/// result of what came before).
FoldedCrc32 FoldCrc32(const BYTE* data, std::size_t size, DWORD crc_register);

}  // namespace vdstomgr
