#pragma once

#include <string>
#include <string_view>

/// Hangul syllables and the letters (jamo) that they are made of. A syllable has an initial
/// consonant, a vowel and, mostly, a final consonant; keyboards give letters of their own
/// ("ㄱ", "ㅏ"), which this calls letters.
namespace vdstomgr {

inline constexpr char32_t kFirstSyllable = 0xAC00, kLastSyllable = 0xD7A3;
inline constexpr char32_t kSyllablesPerVowel = 28;
inline constexpr char32_t kSyllablesPerInitial = 21 * kSyllablesPerVowel;

constexpr bool IsSyllable(char32_t code) {
  return code >= kFirstSyllable && code <= kLastSyllable;
}

/// Is it a consonant as a letter? Two that end a syllable together ("ㄳ") are one letter, too.
constexpr bool IsConsonant(char32_t code) {
  return code >= 0x3131 && code <= 0x314E;
}

/// The initial consonant of a syllable as a letter; any other character itself.
constexpr char32_t InitialOf(char32_t code) {
  constexpr char16_t kInitials[] = u"ㄱㄲㄴㄷㄸㄹㅁㅂㅃㅅㅆㅇㅈㅉㅊㅋㅌㅍㅎ";
  return IsSyllable(code) ? kInitials[(code - kFirstSyllable) / kSyllablesPerInitial] : code;
}

/// The first of the syllables that begin with a letter; the last of them is
/// kSyllablesPerInitial - 1 behind. 0 when there are none.
char32_t FirstSyllableOf(char32_t letter);

/// The final consonant of a syllable as a letter; 0 when it has none.
char32_t FinalOf(char32_t syllable);

/// The letters of two consonants that stand as one; empty for any other character.
std::u32string_view PartsOf(char32_t letter);

/// The text with the parts of syllables put together where they stand apart: initial, vowel and
/// final that follow each other, or a consonant and a vowel as letters. What remains of such parts
/// becomes a letter.
std::u32string ComposeHangul(std::u32string_view text);

}  // namespace vdstomgr
