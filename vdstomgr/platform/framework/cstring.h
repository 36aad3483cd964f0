#pragma once

#include <cstdarg>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "vdstomgr/platform/export.h"

class CString;

namespace vdstomgr {

/// Lets the compiler check a printf-style text; counted with `this` as the first argument.
#if defined(__MINGW32__)
#define VDSTO_PRINTF(text, first) __attribute__((format(gnu_printf, text, first)))
#elif defined(__GNUC__)
#define VDSTO_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define VDSTO_PRINTF(text, first)
#endif

/// Whatever can stand beside a CString in a comparison or a sum: const char*, std::string and
/// views.
template <class T>
concept TextLike =
    !std::is_same_v<T, CString> && std::is_convertible_v<const T&, std::string_view> &&
    !std::is_same_v<T, std::nullptr_t>;

/// A view of any text-like value; a null pointer is an empty text.
inline std::string_view ViewOf(std::string_view text) {
  return text;
}
inline std::string_view ViewOf(const std::string& text) {
  return text;
}
inline std::string_view ViewOf(const char* text) {
  return text == nullptr ? std::string_view() : std::string_view(text);
}

/// A text as an argument: whatever is text-like, CString included.
struct TextView : std::string_view {
  TextView(const char* text) : std::string_view(ViewOf(text)) {}
  TextView(const std::string& text) : std::string_view(text) {}
  TextView(std::string_view text) : std::string_view(text) {}
  TextView(const CString& text);
};

}  // namespace vdstomgr

/// The framework's string: a thin class over std::string. Positions and lengths are bytes, in the
/// process's code page. A null pointer is an empty text. Nothing here throws but std::bad_alloc;
/// positions outside the text are brought back to its ends.
class VDSTO_API CString {
 public:
  CString() = default;
  CString(const char* text) : text_(vdstomgr::ViewOf(text)) {}
  CString(std::string text) noexcept : text_(std::move(text)) {}
  CString(std::string_view text) : text_(text) {}
  /// The first `length` bytes at `text`.
  CString(const char* text, int length) : text_(text, Natural(length)) {}
  /// `repeat` times the character.
  explicit CString(char character, int repeat = 1) : text_(Natural(repeat), character) {}

  operator const char*() const { return text_.c_str(); }
  operator std::string_view() const { return text_; }
  const std::string& Str() const& { return text_; }
  std::string Str() && { return std::move(text_); }
  const char* GetString() const { return text_.c_str(); }

  int GetLength() const { return static_cast<int>(text_.size()); }
  bool IsEmpty() const { return text_.empty(); }
  void Empty() { text_.clear(); }

  /// Replaces the text by a printf-style one; its own text may be among the arguments.
  VDSTO_PRINTF(2, 3) void Format(const char* format, ...);
  VDSTO_PRINTF(2, 3) void AppendFormat(const char* format, ...);
  VDSTO_PRINTF(2, 0) void AppendFormatV(const char* format, std::va_list arguments);

  CString Left(int count) const { return Mid(0, count); }
  CString Right(int count) const;
  CString Mid(int first) const { return Mid(first, GetLength()); }
  CString Mid(int first, int count) const;

  /// The first position of the text at or after `start`, or -1.
  int Find(vdstomgr::TextView part, int start = 0) const;
  int Find(char character, int start = 0) const {
    return Find(std::string_view(&character, 1), start);
  }
  /// The last position of the character, or -1.
  int ReverseFind(char character) const { return Position(text_.rfind(character)); }

  /// Replaces every occurrence, left to right, and answers how many there were. What was put in is
  /// not looked at again. An empty `old_part` replaces nothing.
  int Replace(vdstomgr::TextView old_part, vdstomgr::TextView new_part);
  int Replace(char old_character, char new_character);
  /// Inserts before the position and answers the new length.
  int Insert(int position, vdstomgr::TextView part);
  int Insert(int position, char character) {
    return Insert(position, std::string_view(&character, 1));
  }

  /// Negative, 0 or positive, by bytes.
  int Compare(vdstomgr::TextView other) const { return text_.compare(other); }
  /// As Compare, with the ASCII letters in one case.
  int CompareNoCase(vdstomgr::TextView other) const;

  /// Change the case of the ASCII letters; every other character stays, double-byte ones whole.
  CString& MakeLower();
  CString& MakeUpper();
  /// Take blanks, tabs and line ends off an end.
  CString& TrimLeft();
  CString& TrimRight();
  CString& Trim() { return TrimLeft().TrimRight(); }

  /// The byte at a position; 0 outside the text.
  char GetAt(int position) const { return IsInside(position) ? text_[Natural(position)] : '\0'; }
  /// Does nothing outside the text.
  void SetAt(int position, char character) {
    if (IsInside(position)) text_[Natural(position)] = character;
  }
  template <class Position>
  requires std::is_integral_v<Position>
  char operator[](Position position) const { return GetAt(static_cast<int>(position)); }

  CString& operator+=(const CString& other) { return Append(other.text_); }
  CString& operator+=(char character) { return Append(std::string_view(&character, 1)); }
  template <vdstomgr::TextLike T>
  CString& operator+=(const T& other) {
    return Append(vdstomgr::ViewOf(other));
  }
  CString& Append(vdstomgr::TextView part) {
    text_.append(part);
    return *this;
  }

  auto begin() { return text_.begin(); }
  auto end() { return text_.end(); }
  auto begin() const { return text_.begin(); }
  auto end() const { return text_.end(); }

  friend CString operator+(CString left, const CString& right) { return std::move(left += right); }
  friend CString operator+(CString left, char right) { return std::move(left += right); }
  template <vdstomgr::TextLike T>
  friend CString operator+(CString left, const T& right) {
    return std::move(left += right);
  }
  template <vdstomgr::TextLike T>
  friend CString operator+(const T& left, const CString& right) {
    return CString(vdstomgr::ViewOf(left)) += right;
  }
  friend CString operator+(char left, const CString& right) { return CString(left) += right; }

  friend bool operator==(const CString& left, const CString& right) {
    return left.text_ == right.text_;
  }
  friend auto operator<=>(const CString& left, const CString& right) {
    return left.text_ <=> right.text_;
  }
  template <vdstomgr::TextLike T>
  friend bool operator==(const CString& left, const T& right) {
    return left.text_ == vdstomgr::ViewOf(right);
  }
  template <vdstomgr::TextLike T>
  friend auto operator<=>(const CString& left, const T& right) {
    return std::string_view(left.text_) <=> vdstomgr::ViewOf(right);
  }

 private:
  static std::size_t Natural(int count) { return count < 0 ? 0 : static_cast<std::size_t>(count); }
  static int Position(std::size_t found) {
    return found == std::string::npos ? -1 : static_cast<int>(found);
  }
  bool IsInside(int position) const { return position >= 0 && position < GetLength(); }

  std::string text_;
};

inline vdstomgr::TextView::TextView(const CString& text) : std::string_view(text.Str()) {}

template <>
struct std::hash<CString> {
  std::size_t operator()(const CString& text) const noexcept {
    return std::hash<std::string_view>()(text);
  }
};
