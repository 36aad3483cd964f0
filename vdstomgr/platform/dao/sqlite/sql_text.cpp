#include "vdstomgr/platform/dao/sqlite/sql_text.h"
#include "vdstomgr/platform/text/ascii.h"

namespace vdstomgr::sqlite {
namespace {

std::string Quote(std::string_view text, char quote) {
  std::string quoted(1, quote);
  AppendDoubled(quoted, text, quote);
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
  return SameName(name, "rowid") || SameName(name, "_rowid_") || SameName(name, "oid");
}

}  // namespace vdstomgr::sqlite
