#include "vdstomgr/platform/dao/jet/grams.h"

namespace vdstomgr::jet {
namespace {

constexpr char kInitialsMark = '\xFF';  // begins no character

constexpr char32_t kLastBeforeSurrogates = 0xD7FF, kFirstAfterSurrogates = 0xE000;
constexpr char32_t kFirstInvalidByte = 0x80;

}  // namespace

std::string FirstTextOf(char32_t head) {
  std::string text;
  if (head < kFirstInvalid) {
    AppendCharacter(head, text);
  } else {
    text += static_cast<char>(head - kFirstInvalid);
  }
  return text;
}

char32_t HeadAfter(char32_t head) {
  if (head == kLastBeforeSurrogates) return kFirstAfterSurrogates;
  return head + 1 == kFirstInvalid ? kFirstInvalid + kFirstInvalidByte : head + 1;
}

GramTerm& GramTerm::Pair(char32_t first, char32_t second) {
  size_ = 0;
  Put(first);
  Put(second);
  return *this;
}

GramTerm& GramTerm::Triple(char32_t first, char32_t second, char32_t third) {
  Pair(first, second);
  Put(third);
  return *this;
}

GramTerm& GramTerm::Single(char32_t character) {
  size_ = 0;
  Put(character);
  return *this;
}

GramTerm& GramTerm::Initials(char32_t first, char32_t second) {
  size_ = 0;
  bytes_[size_++] = kInitialsMark;
  Put(first);
  Put(second);
  return *this;
}

GramTerm& GramTerm::Under(char32_t head) {
  Put(head);
  return *this;
}

// As UTF-8, which goes on above the last character, where bytes that are none have their place.
void GramTerm::Put(char32_t character) {
  char* const to = bytes_ + size_;
  if (character < kFirstInvalid) {
    size_ += static_cast<std::size_t>(PutCharacter(character, to) - to);
    return;
  }
  to[0] = static_cast<char>(0xF0 | character >> 18);
  to[1] = static_cast<char>(0x80 | (character >> 12 & 0x3F));
  to[2] = static_cast<char>(0x80 | (character >> 6 & 0x3F));
  to[3] = static_cast<char>(0x80 | (character & 0x3F));
  size_ += 4;
}

}  // namespace vdstomgr::jet
