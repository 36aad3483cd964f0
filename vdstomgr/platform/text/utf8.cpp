#include "vdstomgr/platform/text/utf8.h"

#include <cstdint>
#include <cstring>

namespace vdstomgr {
namespace {

constexpr std::uint64_t kHighBits = 0x8080808080808080;

constexpr char Tail(char32_t code, int shift) {
  return static_cast<char>(0x80 | (code >> shift & 0x3F));
}

}  // namespace

char* PutCharacter(char32_t code, char* utf8) {
  if (!IsScalarValue(code)) code = kReplacementCharacter;
  if (code < 0x80) {
    *utf8++ = static_cast<char>(code);
  } else if (code < 0x800) {
    *utf8++ = static_cast<char>(0xC0 | code >> 6);
    *utf8++ = Tail(code, 0);
  } else if (code < 0x10000) {
    *utf8++ = static_cast<char>(0xE0 | code >> 12);
    *utf8++ = Tail(code, 6);
    *utf8++ = Tail(code, 0);
  } else {
    *utf8++ = static_cast<char>(0xF0 | code >> 18);
    *utf8++ = Tail(code, 12);
    *utf8++ = Tail(code, 6);
    *utf8++ = Tail(code, 0);
  }
  return utf8;
}

void AppendCharacter(char32_t code, std::string& utf8) {
  char bytes[kMostBytes];
  utf8.append(bytes, PutCharacter(code, bytes));
}

std::size_t CountAsciiPrefix(std::string_view text) {
  std::size_t i = 0;
  for (; i + sizeof(std::uint64_t) <= text.size(); i += sizeof(std::uint64_t)) {
    std::uint64_t block;
    std::memcpy(&block, text.data() + i, sizeof block);
    if ((block & kHighBits) != 0) break;
  }
  while (i < text.size() && static_cast<unsigned char>(text[i]) < 0x80) ++i;
  return i;
}

bool IsValidUtf8(std::string_view utf8) {
  for (utf8.remove_prefix(CountAsciiPrefix(utf8)); !utf8.empty();) {
    const DecodedCharacter character = DecodeUtf8(utf8);
    if (character.code == kInvalidCharacter) return false;
    utf8.remove_prefix(character.bytes);
  }
  return true;
}

std::size_t CountCharacters(std::string_view utf8) {
  const std::size_t ascii = CountAsciiPrefix(utf8);
  std::size_t count = ascii;
  for (utf8.remove_prefix(ascii); !utf8.empty(); ++count) {
    utf8.remove_prefix(DecodeUtf8(utf8).bytes);
  }
  return count;
}

}  // namespace vdstomgr
