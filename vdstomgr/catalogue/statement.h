#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/cstring.h"

/// Statements are composed as text: "%d" takes a number of at most 32 bits and prints it signed,
/// "%s" takes a text. Count and kinds are checked when the catalogue is compiled.
namespace vdstomgr {

/// A text that goes between single quotes: those inside it are doubled, nothing else changes.
struct Quoted {
  explicit Quoted(std::string_view value) : text(value) {}
  explicit Quoted(const char* value) : text(ViewOf(value)) {}
  explicit Quoted(const CString& value) : text(value.Str()) {}

  std::string_view text;
};

/// One value on its way into a statement's text; texts are borrowed. A null text is empty.
class SqlArgument {
 public:
  SqlArgument(std::int32_t number) : number_(number) {}
  SqlArgument(std::uint32_t number) : number_(static_cast<std::int32_t>(number)) {}
  SqlArgument(std::uint16_t number) : number_(number) {}
  SqlArgument(std::uint8_t number) : number_(number) {}
  SqlArgument(bool number) : number_(number) {}
  SqlArgument(std::string_view text) : kind_(Kind::Text), text_(text) {}
  SqlArgument(const std::string& text) : SqlArgument(std::string_view(text)) {}
  SqlArgument(const CString& text) : SqlArgument(std::string_view(text.Str())) {}
  SqlArgument(const char* text) : SqlArgument(ViewOf(text)) {}
  SqlArgument(Quoted quoted) : kind_(Kind::QuotedText), text_(quoted.text) {}

  void AppendTo(std::string& statement) const;

 private:
  enum class Kind : std::uint8_t { Number, Text, QuotedText };

  Kind kind_ = Kind::Number;
  std::int32_t number_ = 0;
  std::string_view text_;
};

/// A statement's text with its places; only a literal that fits its arguments compiles.
template <class... Arguments>
struct SqlFormat {
  consteval SqlFormat(const char* literal) : text(literal) {
    constexpr char kPlaces[] = {(std::is_integral_v<Arguments> ? 'd' : 's')..., '\0'};
    const char* place = kPlaces;
    for (const char* at = literal; *at != '\0'; ++at) {
      if (*at != '%') continue;
      if (*++at != *place++ || *at == '\0') throw "a place does not fit its argument";
    }
    if (*place != '\0') throw "an argument without a place";
  }

  const char* text;
};

/// Replaces `statement` by `format` with its places filled in order.
VDSTO_API void ComposeStatement(std::string& statement, std::string_view format,
                                std::span<const SqlArgument> arguments);

/// Appends `text` with every single quote doubled.
VDSTO_API void AppendQuoted(std::string& statement, std::string_view text);

/// "1,2,3": the numbers of an IN list, signed and without blanks.
VDSTO_API std::string IdList(std::span<const std::uint32_t> ids);

}  // namespace vdstomgr
