#include "vdstomgr/platform/common/crc32.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

DWORD BitByBit(const BYTE* data, std::size_t length, DWORD previous) {
  DWORD crc = ~previous;
  for (; length > 0; --length) {
    crc ^= *data++;
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
  }
  return ~crc;
}

TEST(Crc32, IsTheSameHoweverManyBytesGoInOneStep) {
  const auto* const check = reinterpret_cast<const BYTE*>("123456789");
  EXPECT_EQ(CRkCRC32Generator::GenCRC32(check, 9), 0xCBF43926u);
  std::mt19937 random(7);
  std::vector<BYTE> bytes(1200);
  for (BYTE& byte : bytes) byte = static_cast<BYTE>(random());
  for (std::size_t length = 0; length < 1100; ++length) {
    const BYTE* const start = bytes.data() + random() % 100;
    const auto previous = static_cast<DWORD>(random());
    ASSERT_EQ(CRkCRC32Generator::GenCRC32(start, length, previous),
              BitByBit(start, length, previous))
        << length;
  }
}

}  // namespace
