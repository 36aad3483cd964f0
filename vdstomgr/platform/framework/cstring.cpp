#include "vdstomgr/platform/framework/cstring.h"

#include <algorithm>
#include <cstdio>

#include "vdstomgr/platform/text/ascii.h"
#include "vdstomgr/platform/text/code_page.h"

namespace {

constexpr std::string_view kBlanks = " \t\r\n\v\f";

/// Applies `change` to the ASCII letters: the second byte of a double-byte character may look like
/// one and stays.
template <class Change>
void ChangeLetters(std::string& text, Change change) {
  for (std::size_t i = 0; i < text.size();) {
    text[i] = change(text[i]);
    i += vdstomgr::CharacterBytes(std::string_view(text).substr(i));
  }
}

bool IsAscii(char c) {
  return static_cast<unsigned char>(c) < 0x80;
}

}  // namespace

void CString::Format(const char* format, ...) {
  CString formatted;
  std::va_list arguments;
  va_start(arguments, format);
  formatted.AppendFormatV(format, arguments);
  va_end(arguments);
  text_ = std::move(formatted.text_);
}

void CString::AppendFormat(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  AppendFormatV(format, arguments);
  va_end(arguments);
}

void CString::AppendFormatV(const char* format, std::va_list arguments) {
  char buffer[512];
  std::va_list again;
  va_copy(again, arguments);
  // The analyzer does not see that a va_list parameter arrives started.
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
  const int length = std::vsnprintf(buffer, sizeof buffer, format, arguments);
  if (length > 0 && Natural(length) < sizeof buffer) {
    text_.append(buffer, Natural(length));
  } else if (length > 0) {
    std::string formatted(Natural(length) + 1, '\0');
    std::vsnprintf(formatted.data(), formatted.size(), format, again);
    text_.append(formatted, 0, Natural(length));
  }
  va_end(again);
}

CString CString::Right(int count) const {
  const std::size_t kept = std::min(Natural(count), text_.size());
  return CString(std::string_view(text_).substr(text_.size() - kept));
}

CString CString::Mid(int first, int count) const {
  const std::size_t start = std::min(Natural(first), text_.size());
  return CString(std::string_view(text_).substr(start, Natural(count)));
}

int CString::Find(vdstomgr::TextView part, int start) const {
  return Position(text_.find(part, Natural(start)));
}

int CString::Replace(vdstomgr::TextView old_part, vdstomgr::TextView new_part) {
  if (old_part.empty()) return 0;
  int count = 0;
  std::string replaced;
  std::size_t done = 0;
  for (auto at = text_.find(old_part); at != std::string::npos; at = text_.find(old_part, done)) {
    replaced.append(text_, done, at - done).append(new_part);
    done = at + old_part.size();
    ++count;
  }
  if (count > 0) text_ = std::move(replaced.append(text_, done));
  return count;
}

int CString::Replace(char old_character, char new_character) {
  const auto count = std::count(text_.begin(), text_.end(), old_character);
  std::replace(text_.begin(), text_.end(), old_character, new_character);
  return static_cast<int>(count);
}

int CString::Insert(int position, vdstomgr::TextView part) {
  text_.insert(std::min(Natural(position), text_.size()), part);
  return GetLength();
}

int CString::CompareNoCase(vdstomgr::TextView other) const {
  const std::size_t common = std::min(text_.size(), other.size());
  for (std::size_t i = 0; i < common; ++i) {
    if (!IsAscii(text_[i]) || !IsAscii(other[i])) {
      return Mid(static_cast<int>(i)).MakeLower().Compare(CString(other.substr(i)).MakeLower());
    }
    const int difference = vdstomgr::LowerAscii(text_[i]) - vdstomgr::LowerAscii(other[i]);
    if (difference != 0) return difference;
  }
  return text_.size() == other.size() ? 0 : text_.size() < other.size() ? -1 : 1;
}

CString& CString::MakeLower() {
  ChangeLetters(text_, vdstomgr::LowerAscii);
  return *this;
}

CString& CString::MakeUpper() {
  ChangeLetters(text_, vdstomgr::UpperAscii);
  return *this;
}

CString& CString::TrimLeft() {
  text_.erase(0, text_.find_first_not_of(kBlanks));
  return *this;
}

CString& CString::TrimRight() {
  text_.erase(text_.find_last_not_of(kBlanks) + 1);
  return *this;
}
