#include "vdstomgr/platform/dao/sqlite/sql_text.h"

#include "vdstomgr/platform/dao/column_table.h"

namespace vdstomgr::sqlite {
namespace {

std::string Quote(std::string_view text, char quote) {
  std::string quoted(1, quote);
  for (const char byte : text) {
    if (byte == quote) quoted += quote;
    quoted += byte;
  }
  return quoted += quote;
}

}  // namespace

std::string QuoteName(std::string_view name) {
  return Quote(name, '"');
}
std::string QuoteText(std::string_view text) {
  return Quote(text, '\'');
}

bool IsRowidName(std::string_view name) {
  return dao::SameName(name, "rowid") || dao::SameName(name, "_rowid_") ||
         dao::SameName(name, "oid");
}

}  // namespace vdstomgr::sqlite
