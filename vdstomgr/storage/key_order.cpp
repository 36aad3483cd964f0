#include "vdstomgr/storage/key_order.h"

#include <algorithm>
#include <cstring>

#include "vdstomgr/storage/little_endian.h"

namespace vdstomgr {
namespace {

constexpr std::size_t kWordBytes = 8;
constexpr std::uint64_t kEveryByte = 0x0101010101010101;
constexpr std::uint64_t kTopBits = 0x80 * kEveryByte;

std::uint64_t LoadUpTo8(KeyBytes key, std::size_t at) {
  if (key.size() >= at + kWordBytes) return LoadLittle<std::uint64_t>(key.data() + at);
  std::uint64_t word = 0;
  for (std::size_t i = at; i < key.size(); ++i) word |= std::uint64_t{key[i]} << 8 * (i - at);
  return word;
}

/// Not 0 when a byte is 0; the lowest bit set is the top bit of the lowest such byte.
std::uint64_t ZeroBytes(std::uint64_t word) {
  return (word - kEveryByte) & ~word & kTopBits;
}

/// Clears what follows the first 0 byte, counted from the lowest.
std::uint64_t CutAtZero(std::uint64_t word) {
  const std::uint64_t zeros = ZeroBytes(word);
  if (zeros == 0) return word;
  const std::uint64_t first = zeros & (~zeros + 1);
  return word & ((first >> 7) - 1);
}

std::uint64_t LowerCase(std::uint64_t word) {
  const std::uint64_t low_bits = word & ~kTopBits;
  const std::uint64_t from_a = low_bits + (0x80 - 'A') * kEveryByte;
  const std::uint64_t after_z = low_bits + (0x7F - 'Z') * kEveryByte;
  return word | (from_a & ~after_z & ~word & kTopBits) >> 2;
}

std::uint64_t ReverseBytes(std::uint64_t word) {
  std::uint64_t reversed = 0;
  for (std::size_t i = 0; i < kWordBytes; ++i) reversed = reversed << 8 | (word >> 8 * i & 0xFF);
  return reversed;
}

/// Eight bytes of a text key as a number that orders like them; the lowest byte is 0 when the text
/// ends here.
std::uint64_t OrderOfWord(std::uint64_t word) {
  return ReverseBytes(LowerCase(CutAtZero(word)));
}

std::uint64_t TextWord(KeyBytes key, std::size_t at) {
  return OrderOfWord(LoadUpTo8(key, at));
}

int CompareTexts(KeyBytes left, KeyBytes right, std::size_t at) {
  const std::size_t end = std::max<std::size_t>(left.size(), right.size());
  for (; at < end; at += kWordBytes) {
    const std::uint64_t left_bytes = LoadUpTo8(left, at);
    const std::uint64_t right_bytes = LoadUpTo8(right, at);
    if (left_bytes == right_bytes && ZeroBytes(left_bytes) == 0) continue;
    const std::uint64_t left_word = OrderOfWord(left_bytes);
    const std::uint64_t right_word = OrderOfWord(right_bytes);
    if (left_word != right_word) return left_word < right_word ? -1 : 1;
    if ((left_word & 0xFF) == 0) return 0;
  }
  return 0;
}

}  // namespace

KeyBytes KeyOfText(const char* text, std::size_t limit) {
  if (text == nullptr) return {};
  const void* const end = std::memchr(text, 0, limit);
  const std::size_t size =
      end == nullptr ? limit : static_cast<std::size_t>(static_cast<const char*>(end) - text);
  return {reinterpret_cast<const BYTE*>(text), size};
}

std::uint64_t KeyOrder::Rank(KeyBytes key) const {
  if (!is_number_) return TextWord(key, 0);
  return (LoadLittle<DWORD>(key.data()) - origin_) ^ DWORD { 0x80000000 };
}

int KeyOrder::Compare(KeyBytes left, KeyBytes right) const {
  const std::uint64_t left_rank = Rank(left);
  const std::uint64_t right_rank = Rank(right);
  if (left_rank != right_rank) return left_rank < right_rank ? -1 : 1;
  return CompareRest(left, right);
}

int KeyOrder::CompareRest(KeyBytes left, KeyBytes right) const {
  const bool is_whole = is_number_ || ZeroBytes(LoadUpTo8(left, 0)) != 0;
  return is_whole ? 0 : CompareTexts(left, right, kWordBytes);
}

bool KeyOrder::StartsWith(KeyBytes key, KeyBytes prefix) {
  for (std::size_t at = 0; at < prefix.size(); at += kWordBytes) {
    const std::size_t size = std::min<std::size_t>(prefix.size() - at, kWordBytes);
    const std::uint64_t mask = ~std::uint64_t{0} << 8 * (kWordBytes - size);
    if ((TextWord(key, at) & mask) != TextWord(prefix, at)) return false;
  }
  return true;
}

}  // namespace vdstomgr
