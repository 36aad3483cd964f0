#include "vdstomgr/platform/common/crc32.h"

#include <array>

#include "vdstomgr/platform/common/crc32_folding.h"

namespace {

constexpr DWORD kPolynomial = 0xEDB88320;
constexpr std::size_t kSlices = 8;

/// Table n holds the effect of a byte that n more bytes follow, so that eight bytes go in one step.
constexpr auto kTables = [] {
  std::array<std::array<DWORD, 256>, kSlices> tables{};
  for (DWORD byte = 0; byte < 256; ++byte) {
    DWORD crc = byte;
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? kPolynomial : 0);
    tables[0][byte] = crc;
  }
  for (std::size_t slice = 1; slice < kSlices; ++slice) {
    for (std::size_t byte = 0; byte < 256; ++byte) {
      const DWORD shorter = tables[slice - 1][byte];
      tables[slice][byte] = shorter >> 8 ^ tables[0][shorter & 0xFF];
    }
  }
  return tables;
}();

DWORD LittleEndian(const BYTE* data) {
  return data[0] | DWORD{data[1]} << 8 | DWORD{data[2]} << 16 | DWORD{data[3]} << 24;
}

DWORD StepFour(DWORD word, std::size_t slice) {
  return kTables[slice + 3][word & 0xFF] ^ kTables[slice + 2][word >> 8 & 0xFF] ^
         kTables[slice + 1][word >> 16 & 0xFF] ^ kTables[slice][word >> 24];
}

}  // namespace

DWORD CRkCRC32Generator::GenCRC32(const BYTE* data, std::size_t length, DWORD previous) {
  DWORD crc = ~previous;
  if (length >= vdstomgr::kCrcFoldBytes && vdstomgr::CanFoldCrc32()) {
    const std::size_t whole = length / vdstomgr::kCrcFoldBytes * vdstomgr::kCrcFoldBytes;
    const auto folded = vdstomgr::FoldCrc32(data, whole, crc);
    crc = ~GenCRC32(folded.bytes, sizeof folded.bytes, ~DWORD{0});
    data += whole;
    length -= whole;
  }
  for (; length >= kSlices; data += kSlices, length -= kSlices) {
    crc = StepFour(crc ^ LittleEndian(data), 4) ^ StepFour(LittleEndian(data + 4), 0);
  }
  for (; length > 0; ++data, --length) crc = crc >> 8 ^ kTables[0][(crc ^ *data) & 0xFF];
  return ~crc;
}
