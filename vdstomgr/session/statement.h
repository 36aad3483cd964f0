#pragma once

#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/cstring.h"

/// Statements are composed as text: "%d" takes a number of at most 32 bits and prints it signed,
/// "%s" takes a text. Texts have their single quotes doubled unless they say that they go in as
/// they stand. Count and kinds are checked when the library is compiled.
namespace vdstomgr {

/// A text that goes into a statement as it stands: a GUID, a table's name. Null is empty.
struct Raw {
  explicit Raw(TextView value) : text(value) {}

  std::string_view text;
};

/// A time in seconds since 1970 as the 19 characters that date columns hold.
struct DateText {
  std::int32_t time;
};

/// The numbers of an IN list, signed and without blanks: 1,-10,3
class IdList {
 public:
  explicit IdList(const CDWordArray& ids);

  operator Raw() const { return Raw(text_); }

 private:
  std::string text_;
};

/// The GUIDs of an IN list, as they are and without blanks: 'A','B'
class GuidList {
 public:
  explicit GuidList(const CStringArray& guids);

  operator Raw() const { return Raw(text_); }

 private:
  std::string text_;
};

/// Stands for the item at hand where a statement is run for each item of a list.
struct EachGuid {};
struct EachId {};
inline constexpr EachGuid kEachGuid;
inline constexpr EachId kEachId;

/// One value on its way into a statement's text; texts are borrowed. A null text is empty.
class SqlArgument {
 public:
  template <std::integral Number>
  requires(sizeof(Number) <= 4) SqlArgument(Number number)
      : kind_(Kind::Number), number_(static_cast<std::int32_t>(number)) {}
  SqlArgument(std::string_view text) : kind_(Kind::Quoted), text_(text) {}
  SqlArgument(const std::string& text) : SqlArgument(std::string_view(text)) {}
  SqlArgument(const CString& text) : SqlArgument(std::string_view(text.Str())) {}
  SqlArgument(const char* text) : SqlArgument(ViewOf(text)) {}
  SqlArgument(Raw raw) : kind_(Kind::Raw), text_(raw.text) {}
  SqlArgument(const IdList& list) : SqlArgument(Raw(list)) {}
  SqlArgument(const GuidList& list) : SqlArgument(Raw(list)) {}
  SqlArgument(DateText date) : kind_(Kind::Date), number_(date.time) {}
  SqlArgument(EachGuid) : kind_(Kind::Item) {}
  SqlArgument(EachId) : kind_(Kind::Item) {}

  /// What goes in: the argument itself, or the item it stands for.
  const SqlArgument& With(const SqlArgument& item) const {
    return kind_ == Kind::Item ? item : *this;
  }
  void AppendTo(std::string& statement) const;

 private:
  enum class Kind : std::uint8_t { Number, Quoted, Raw, Date, Item };

  Kind kind_;
  std::int32_t number_ = 0;
  std::string_view text_;
};

template <class Argument>
inline constexpr bool kPrintsAsNumber =
    std::is_integral_v<Argument> || std::is_same_v<Argument, EachId>;

/// A statement's text with its places; only a literal that fits its arguments compiles.
template <class... Arguments>
struct SqlFormat {
  consteval SqlFormat(const char* literal) : text(literal) {
    constexpr char kPlaces[] = {(kPrintsAsNumber<Arguments> ? 'd' : 's')..., '\0'};
    const char* place = kPlaces;
    for (const char* at = literal; *at != '\0'; ++at) {
      if (*at != '%') continue;
      if (*++at != *place++ || *at == '\0') throw "a place does not fit its argument";
    }
    if (*place != '\0') throw "an argument without a place";
  }

  const char* text;
};

/// The format of a call whose arguments are deduced from the arguments alone.
template <class... Arguments>
using SqlFormatOf = SqlFormat<std::type_identity_t<Arguments>...>;

/// Replaces `statement` by `format` with its places filled in order.
void ComposeStatement(std::string& statement, std::string_view format,
                      std::span<const SqlArgument> arguments);
/// The same for one item of a list.
void ComposeStatement(std::string& statement, std::string_view format,
                      std::span<const SqlArgument> arguments, const SqlArgument& item);

/// Appends `text` with every single quote doubled.
void AppendQuoted(std::string& statement, std::string_view text);

}  // namespace vdstomgr
