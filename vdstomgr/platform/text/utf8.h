#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vdstomgr {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;
/// What DecodeUtf8 answers for bytes that are no character.
inline constexpr char32_t kInvalidCharacter = 0xFFFFFFFF;

struct DecodedCharacter {
  char32_t code;      ///< kInvalidCharacter for a byte that begins no valid character
  std::size_t bytes;  ///< 1 for an invalid byte
};

namespace internal {

struct LeadByte {
  std::size_t bytes;  ///< 0 for a byte that begins no character
  char32_t payload;
  char32_t minimum;  ///< a smaller result is an overlong form
};

constexpr LeadByte ReadLead(unsigned char lead) {
  if (lead < 0x80) return {1, lead, 0};
  if (lead >= 0xC2 && lead < 0xE0) return {2, lead & 0x1Fu, 0x80};
  if (lead >= 0xE0 && lead < 0xF0) return {3, lead & 0x0Fu, 0x800};
  if (lead >= 0xF0 && lead < 0xF5) return {4, lead & 0x07u, 0x10000};
  return {0, 0, 0};
}

}  // namespace internal

constexpr bool IsScalarValue(char32_t code) {
  return code < 0xD800 || (code >= 0xE000 && code <= 0x10FFFF);
}

/// The first character of `utf8`, which must not be empty. Overlong forms, surrogates and numbers
/// above U+10FFFF are invalid.
constexpr DecodedCharacter DecodeUtf8(std::string_view utf8) {
  constexpr DecodedCharacter kInvalid{kInvalidCharacter, 1};
  const internal::LeadByte lead = internal::ReadLead(static_cast<unsigned char>(utf8.front()));
  if (lead.bytes == 1) return {lead.payload, 1};
  if (lead.bytes == 0 || lead.bytes > utf8.size()) return kInvalid;
  char32_t code = lead.payload;
  for (std::size_t i = 1; i < lead.bytes; ++i) {
    const auto byte = static_cast<unsigned char>(utf8[i]);
    if ((byte & 0xC0) != 0x80) return kInvalid;
    code = code << 6 | (byte & 0x3Fu);
  }
  if (code < lead.minimum || !IsScalarValue(code)) return kInvalid;
  return {code, lead.bytes};
}

/// The most bytes that one character takes.
inline constexpr std::size_t kMostBytes = 4;

/// Writes one character of up to kMostBytes bytes and answers where it ends. A number that is no
/// Unicode scalar value becomes U+FFFD.
char* PutCharacter(char32_t code, char* utf8);
/// As PutCharacter, at the end of a text.
void AppendCharacter(char32_t code, std::string& utf8);

/// How many bytes at the start are ASCII.
std::size_t CountAsciiPrefix(std::string_view text);

bool IsValidUtf8(std::string_view utf8);

/// The number of characters; an invalid byte counts as one.
std::size_t CountCharacters(std::string_view utf8);

}  // namespace vdstomgr
