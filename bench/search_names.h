#pragma once

#include <cstdint>
#include <string>

#include "vdstomgr/records/photo_info.h"

/// The names that searches are measured on: what cameras, phones and their Korean owners call
/// photos. Each is the same whenever it is asked for.
namespace bench {

std::string NameOf(std::uint64_t number);
PHOTOINFO NamedPhoto(std::uint64_t number);

/// A word that some names hold, and what it is an example of.
struct SearchedWord {
  const char* kind;
  const char* text;
  bool by_initials = false;
};
inline constexpr SearchedWord kSearchedWords[] = {
    {"common", "IMG"},
    {"extension", "jpg"},
    {"two syllables", "산굼"},
    {"common two", "제주"},
    {"one syllable", "굼"},
    {"common one", "여"},
    {"rare", "Sunset4711"},
    {"day", "20190423"},
    {"two words", "제주 벚꽃"},
    {"no hit", "없는이름"},
    {"no hit, digits", "9999999"},
    {"initials", "ㅅㄱㅂㄹ", true},
    {"initials, mixed", "ㅅ굼ㅂ", true},
    {"half typed", "산굼ㅂ", true},
};

}  // namespace bench
