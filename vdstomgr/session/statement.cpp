#include "vdstomgr/session/statement.h"

#include <cassert>
#include <charconv>

#include "vdstomgr/platform/utility/utility_lib.h"

namespace vdstomgr {

namespace {

void AppendNumber(std::string& statement, std::int32_t number) {
  char digits[12];
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  statement.append(digits, end);
}

}  // namespace

IdList::IdList(const CDWordArray& ids) {
  for (const DWORD id : ids) {
    if (!text_.empty()) text_.push_back(',');
    AppendNumber(text_, static_cast<std::int32_t>(id));
  }
}

GuidList::GuidList(const CStringArray& guids) {
  for (const CString& guid : guids) {
    if (!text_.empty()) text_.push_back(',');
    text_.append("'").append(guid.Str()).append("'");
  }
}

void SqlArgument::AppendTo(std::string& statement) const {
  switch (kind_) {
    case Kind::Number:
      return AppendNumber(statement, number_);
    case Kind::Quoted:
      return AppendQuoted(statement, text_);
    case Kind::Raw:
      statement.append(text_);
      return;
    case Kind::Date:
      statement.append(CUtilityLib::GetTime(number_).Str());
      return;
    case Kind::Item:
      assert(!"an item's place in a statement that is run without a list");
  }
}

void ComposeStatement(std::string& statement, std::string_view format,
                      std::span<const SqlArgument> arguments) {
  ComposeStatement(statement, format, arguments, kEachGuid);
}

void ComposeStatement(std::string& statement, std::string_view format,
                      std::span<const SqlArgument> arguments, const SqlArgument& item) {
  statement.clear();
  for (const SqlArgument& argument : arguments) {
    const std::size_t place = format.find('%');
    statement.append(format.substr(0, place));
    argument.With(item).AppendTo(statement);
    format.remove_prefix(place + 2);
  }
  statement.append(format);
}

void AppendQuoted(std::string& statement, std::string_view text) {
  for (std::size_t quote; (quote = text.find('\'')) != std::string_view::npos;) {
    statement.append(text.substr(0, quote + 1)).push_back('\'');
    text.remove_prefix(quote + 1);
  }
  statement.append(text);
}

}  // namespace vdstomgr
