#include "vdstomgr/platform/text/hangul.h"

namespace vdstomgr {
namespace {

constexpr std::u32string_view kInitials = U"ㄱㄲㄴㄷㄸㄹㅁㅂㅃㅅㅆㅇㅈㅉㅊㅋㅌㅍㅎ";
constexpr std::u32string_view kFinals = U"ㄱㄲㄳㄴㄵㄶㄷㄹㄺㄻㄼㄽㄾㄿㅀㅁㅂㅄㅅㅆㅇㅈㅊㅋㅌㅍㅎ";

// The blocks of parts that only make syllables, and of vowels as letters.
constexpr char32_t kInitialParts = 0x1100, kVowelParts = 0x1161, kFinalParts = 0x11A8;
constexpr char32_t kVowelLetters = 0x314F;
constexpr char32_t kVowels = 21;

constexpr char32_t kNone = 0xFFFFFFFF;

// Places in the order of syllables; kNone for what is no such part.
char32_t InitialPlace(char32_t code, bool letters) {
  if (code - kInitialParts < kInitials.size()) return code - kInitialParts;
  const auto place = letters ? kInitials.find(code) : kInitials.npos;
  return place == kInitials.npos ? kNone : static_cast<char32_t>(place);
}

char32_t VowelPlace(char32_t code, bool letters) {
  if (code - kVowelParts < kVowels) return code - kVowelParts;
  return letters && code - kVowelLetters < kVowels ? code - kVowelLetters : kNone;
}

bool IsFinalPart(char32_t code) {
  return code - kFinalParts < kFinals.size();
}

char32_t AsLetter(char32_t code) {
  if (code - kInitialParts < kInitials.size()) return kInitials[code - kInitialParts];
  if (code - kVowelParts < kVowels) return code - kVowelParts + kVowelLetters;
  return IsFinalPart(code) ? kFinals[code - kFinalParts] : code;
}

}  // namespace

char32_t FirstSyllableOf(char32_t letter) {
  const char32_t place = InitialPlace(letter, true);
  return place == kNone ? 0 : kFirstSyllable + place * kSyllablesPerInitial;
}

char32_t FinalOf(char32_t syllable) {
  const char32_t place = (syllable - kFirstSyllable) % kSyllablesPerVowel;
  return place == 0 ? 0 : kFinals[place - 1];
}

std::u32string_view PartsOf(char32_t letter) {
  constexpr std::u32string_view kPairs =
      U"ㄳㄱㅅㄵㄴㅈㄶㄴㅎㄺㄹㄱㄻㄹㅁㄼㄹㅂㄽㄹㅅㄾㄹㅌㄿㄹㅍㅀㄹㅎㅄㅂㅅ";
  for (std::size_t i = 0; i < kPairs.size(); i += 3)
    if (kPairs[i] == letter) return kPairs.substr(i + 1, 2);
  return {};
}

std::u32string ComposeHangul(std::u32string_view text) {
  std::u32string composed;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto next = [&](std::size_t ahead) {
      return at + ahead < text.size() ? text[at + ahead] : char32_t{0};
    };
    const bool letters = IsConsonant(text[at]);
    const char32_t initial = InitialPlace(text[at], letters);
    const char32_t vowel = VowelPlace(next(1), letters);
    const bool has_vowel = !IsSyllable(text[at]);
    if (has_vowel && (initial == kNone || vowel == kNone)) {
      composed += AsLetter(text[at]);
      continue;
    }
    char32_t syllable = text[at];
    if (has_vowel) {
      syllable = kFirstSyllable + initial * kSyllablesPerInitial + vowel * kSyllablesPerVowel;
      ++at;
    }
    if (FinalOf(syllable) == 0 && IsFinalPart(next(1))) syllable += text[++at] - kFinalParts + 1;
    composed += syllable;
  }
  return composed;
}

}  // namespace vdstomgr
