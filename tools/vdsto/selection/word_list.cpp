#include "tools/vdsto/selection/word_list.h"

#include <algorithm>
#include <iostream>

#include "tools/vdsto/selection/unknown_name.h"

namespace vdsto {
namespace {

/// Looking up what is not there is dear, and nobody reads a long list of what is wrong.
constexpr size_t kMostUnknown = 4;

void ReadListed(const WordList& list, std::istream& input, std::vector<Name>& names) {
  const char end = list.ends_with_zero ? '\0' : '\n';
  for (std::string name; std::getline(input, name, end);) {
    if (!list.ends_with_zero && name.ends_with('\r')) name.pop_back();
    if (!name.empty()) names.push_back({name, false});
  }
  if (input.bad()) throw ToolError(ExitCode::kUsage, "standard input cannot be read");
}

}  // namespace

std::vector<Name> ReadNames(const WordList& list, std::istream& input) {
  if (list.ends_with_zero && std::count(list.words.begin(), list.words.end(), "-") == 0)
    throw ToolError(ExitCode::kUsage, "-0 is for a list on standard input: give - too");
  std::vector<Name> names;
  for (const std::string& word : list.words) {
    if (word.empty()) throw ToolError(ExitCode::kUsage, "a name is empty");
    word == "-" ? ReadListed(list, input, names) : names.push_back({word});
  }
  return names;
}

void SelectNames(const WordList& list, std::string_view noun, std::string_view advice,
                 const std::function<bool(const Name&)>& select) {
  std::vector<std::string> unknown;
  for (const Name& name : ReadNames(list, std::cin)) {
    if (!select(name)) unknown.push_back(name.text);
    if (unknown.size() == kMostUnknown) break;
  }
  if (!unknown.empty()) throw NotInCatalogue(noun, unknown, advice);
}

}  // namespace vdsto
