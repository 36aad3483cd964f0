#pragma once
#include <functional>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

namespace vdsto {

/// Names as a user gives them: the words of a command line, where "-" stands for a list on standard
/// input.
struct WordList {
  std::vector<std::string> words;
  bool ends_with_zero = false;  ///< the list's names end with a zero byte each, else with a line
};

struct Name {
  std::string text;
  bool may_be_pattern = true;  ///< names that a program lists are never patterns
};

/// The names, with those from `input` in the place of "-". Throws ToolError for an empty word,
/// which is a variable that is not set rather than a wish, and for a list that cannot be read.
std::vector<Name> ReadNames(const WordList& list, std::istream& input);

/// Reads the names and gives each to `select`, which answers whether it means something. Throws
/// NotInCatalogue about those that mean nothing.
void SelectNames(const WordList& list, std::string_view noun, std::string_view advice,
                 const std::function<bool(const Name&)>& select);

}  // namespace vdsto
