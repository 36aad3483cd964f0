#include "vdstomgr/platform/dao/jet/reserved_words.h"

#include <algorithm>
#include <array>
#include <span>

#include "vdstomgr/platform/text/ascii.h"

namespace vdstomgr::jet {
namespace {

constexpr size_t kWordsThatTakeSigns = 15;  // the first ones

constexpr std::array<std::string_view, 47> kReserved = {
    "ALL",   "AND",  "BETWEEN",    "BY",     "DISTINCT", "HAVING",  "IN",    "LIKE",
    "MOD",   "NOT",  "ON",         "OR",     "SELECT",   "SET",     "WHERE",

    "AS",    "ASC",  "CONSTRAINT", "CREATE", "DELETE",   "DESC",    "DROP",  "EXISTS",
    "FALSE", "FROM", "GROUP",      "INDEX",  "INNER",    "INSERT",  "INTO",  "IS",
    "JOIN",  "LEFT", "NULL",       "ORDER",  "OUTER",    "PRIMARY", "RIGHT", "TABLE",
    "TOP",   "TRUE", "UNION",      "UNIQUE", "UPDATE",   "VALUES",  "WITH",  "XOR"};

bool IsOneOf(std::span<const std::string_view> words, std::string_view word) {
  return std::any_of(words.begin(), words.end(),
                     [&](std::string_view known) { return SameName(known, word); });
}

}  // namespace

bool IsReserved(std::string_view word) {
  return IsOneOf(kReserved, word);
}

bool TakesSign(std::string_view word) {
  return IsOneOf(std::span(kReserved).first(kWordsThatTakeSigns), word);
}

}  // namespace vdstomgr::jet
