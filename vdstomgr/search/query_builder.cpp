#include "vdstomgr/search/query_builder.h"

namespace {

std::string_view TrimmedOfBlanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string WithSingleSpaces(std::string_view text) {
  std::string single;
  for (const char c : text)
    if (c != ' ' || !single.ends_with(' ')) single += c;
  return single;
}

/// One replacement after the other on the whole text, so that the "]" that the second puts in is
/// replaced by the third, on purpose: what is searched for must not change with the version.
CString Escaped(CString text) {
  constexpr const char* kReplacements[][2] = {{"'", "''"},   {"[", "[[]"}, {"]", "[]]"},
                                              {"*", "[*]"},  {"#", "[#]"}, {"?", "[?]"},
                                              {"\\", "\\\\"}};
  for (const auto& [character, escape] : kReplacements) text.Replace(character, escape);
  return text;
}

CString Term(const CString& column, const CString& text) {
  return column + " LIKE '*" + text + "*'";
}

}  // namespace

CString BuildSearchQuery(const char* table, const char* column, const char* text) {
  const CString escaped = Escaped(WithSingleSpaces(TrimmedOfBlanks(vdstomgr::ViewOf(text))));
  CStringArray words;
  SplitStringBySpace(escaped, ' ', words);
  CString terms = Term(column, escaped);
  const char* separator = " OR (";
  for (const CString& word : words) {
    terms += separator + Term(column, word);
    separator = " AND ";
  }
  if (!words.IsEmpty()) terms += ")";
  CString query;
  query.Format("SELECT * FROM %s WHERE (%s) ORDER BY %s", vdstomgr::ViewOf(table).data(),
               terms.GetString(), vdstomgr::ViewOf(column).data());
  return query;
}

void SplitStringBySpace(const CString& text, char separator, CStringArray& words) {
  words.RemoveAll();
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t end = std::min(rest.find(separator), rest.size());
    if (end > 0) words.Add(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
}
