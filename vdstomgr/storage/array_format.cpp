#include "vdstomgr/storage/array_format.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "vdstomgr/storage/little_endian.h"

namespace vdstomgr {
namespace {

constexpr BYTE kStart[] = {0xFB, 0, 'A', 'R', 'R', 'A', 'Y', 0, '0', '1', '0', '0'};
constexpr std::size_t kIdAt = 12;
constexpr std::size_t kUnitSizeAt = 16;

}  // namespace

ArrayHeader ArrayHeader::Decode(const BYTE* bytes) {
  return {LoadLittle<DWORD>(bytes + kIdAt), LoadLittle<DWORD>(bytes + kUnitSizeAt),
          LoadLittle<DWORD>(bytes + kArrayDataBytesAt)};
}

bool ArrayHeader::HasSignature(const BYTE* bytes) {
  return std::memcmp(bytes, kStart, sizeof kStart) == 0;
}

std::array<BYTE, kArrayHeaderBytes> ArrayHeader::Encode() const {
  std::array<BYTE, kArrayHeaderBytes> bytes{};
  std::copy(std::begin(kStart), std::end(kStart), bytes.begin());
  StoreLittle(bytes.data() + kIdAt, array_id);
  StoreLittle(bytes.data() + kUnitSizeAt, unit_size);
  StoreLittle(bytes.data() + kArrayDataBytesAt, data_bytes);
  return bytes;
}

}  // namespace vdstomgr
