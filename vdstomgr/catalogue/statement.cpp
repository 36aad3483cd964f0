#include "vdstomgr/catalogue/statement.h"

#include <charconv>

namespace vdstomgr {

namespace {

void AppendNumber(std::string& statement, std::int32_t number) {
  char digits[12];
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  statement.append(digits, end);
}

}  // namespace

void SqlArgument::AppendTo(std::string& statement) const {
  switch (kind_) {
    case Kind::Number:
      return AppendNumber(statement, number_);
    case Kind::Text:
      statement.append(text_);
      return;
    case Kind::QuotedText:
      return AppendQuoted(statement, text_);
  }
}

void ComposeStatement(std::string& statement, std::string_view format,
                      std::span<const SqlArgument> arguments) {
  statement.clear();
  for (const SqlArgument& argument : arguments) {
    const std::size_t place = format.find('%');
    statement.append(format.substr(0, place));
    argument.AppendTo(statement);
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

std::string IdList(std::span<const std::uint32_t> ids) {
  std::string list;
  for (const std::uint32_t id : ids) {
    if (!list.empty()) list.push_back(',');
    AppendNumber(list, static_cast<std::int32_t>(id));
  }
  return list;
}

}  // namespace vdstomgr
