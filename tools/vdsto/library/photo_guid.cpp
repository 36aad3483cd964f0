#include "tools/vdsto/library/photo_guid.h"

#include <openssl/rand.h>

#include <array>
#include <cctype>
#include <chrono>
#include <stdexcept>

namespace vdsto {
namespace {

bool IsHyphenPlace(size_t place) {
  return place == 8 || place == 13 || place == 18 || place == 23;
}

}  // namespace

std::string NewPhotoGuid() {
  std::array<unsigned char, 16> bytes{};
  if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1)
    throw std::runtime_error("no random numbers");
  const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(
                                std::chrono::system_clock::now().time_since_epoch())
                                .count();
  for (int i = 0; i < 6; ++i)
    bytes[static_cast<size_t>(i)] = static_cast<unsigned char>(milliseconds >> (40 - 8 * i));
  bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x70);
  bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);
  std::string guid;
  for (const unsigned char byte : bytes) {
    if (IsHyphenPlace(guid.size())) guid += '-';
    guid += "0123456789ABCDEF"[byte >> 4];
    guid += "0123456789ABCDEF"[byte & 15];
  }
  return guid;
}

bool IsPhotoGuid(std::string_view text) {
  if (text.size() != 36) return false;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool fits =
        IsHyphenPlace(i) ? text[i] == '-' : std::isxdigit(static_cast<unsigned char>(text[i])) != 0;
    if (!fits) return false;
  }
  return true;
}

}  // namespace vdsto
