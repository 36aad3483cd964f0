#pragma once

#include <algorithm>
#include <string>
#include <string_view>

/// The letters A to Z and a to z; every other byte stays what it is.
namespace vdstomgr {

constexpr char LowerAscii(char byte) {
  return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
}

constexpr char UpperAscii(char byte) {
  return byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - ('a' - 'A')) : byte;
}

inline std::string AsciiLowered(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), LowerAscii);
  return lower;
}

/// Do two names differ at most in the case of ASCII letters?
inline bool SameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return LowerAscii(x) == LowerAscii(y); });
}

}  // namespace vdstomgr
