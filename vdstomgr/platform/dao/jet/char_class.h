#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace vdstomgr::jet {

/// What a byte can be in a statement, outside of quotes and brackets.
enum class CharClass : std::uint8_t {
  Refused,
  Symbol,
  Space,
  Word,
  Digit,
  Dot,
  Minus,
  Quote,
  Bracket
};

namespace detail {
constexpr std::array<CharClass, 256> MakeCharClasses() {
  std::array<CharClass, 256> table{};
  const auto set = [&](std::string_view bytes, CharClass value) {
    for (const char byte : bytes) table[static_cast<unsigned char>(byte)] = value;
  };
  set("()=,;*+/\\^&<>", CharClass::Symbol);
  set(" \t\r\n\f\v", CharClass::Space);
  set("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_", CharClass::Word);
  set("0123456789", CharClass::Digit);
  set(".", CharClass::Dot);
  set("-", CharClass::Minus);
  set("'\"", CharClass::Quote);
  set("[", CharClass::Bracket);
  for (size_t byte = 0x80; byte < 0x100; ++byte) table[byte] = CharClass::Word;
  return table;
}
inline constexpr std::array<CharClass, 256> kCharClasses = MakeCharClasses();
}  // namespace detail

constexpr CharClass ClassOf(char byte) {
  return detail::kCharClasses[static_cast<unsigned char>(byte)];
}

/// Can the byte stand inside a name that has no brackets?
constexpr bool IsWordByte(char byte) {
  const CharClass c = ClassOf(byte);
  return c == CharClass::Word || c == CharClass::Digit;
}

}  // namespace vdstomgr::jet
