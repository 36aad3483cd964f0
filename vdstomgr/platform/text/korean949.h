#pragma once

#include <string>
#include <string_view>

/// Code page 949, by a table in the tree: what is stored must not depend on which converters a
/// machine has installed.
namespace vdstomgr::korean949 {

constexpr bool IsLeadByte(unsigned char byte) {
  return byte >= 0x81 && byte <= 0xFE;
}
constexpr bool IsTrailByte(unsigned char byte) {
  return (byte >= 0x41 && byte <= 0x5A) || (byte >= 0x61 && byte <= 0x7A) ||
         (byte >= 0x81 && byte <= 0xFE);
}

/// 2 when the text, which must not be empty, begins with a lead byte and a trail byte; else 1.
constexpr std::size_t CharacterBytes(std::string_view text) {
  const bool is_double = text.size() > 1 && IsLeadByte(static_cast<unsigned char>(text[0])) &&
                         IsTrailByte(static_cast<unsigned char>(text[1]));
  return is_double ? 2 : 1;
}

void AppendUtf8(std::string_view korean, std::string& out);
void AppendFromUtf8(std::string_view utf8, std::string& out);

}  // namespace vdstomgr::korean949
