#pragma once

#include <functional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue_test.h"

/// Operations as tables of data: the rows before, the call and its answer, the rows after.
namespace vdstomgr {

/// Values in order, joined by '|', as the raw table shows them.
template <class... Values>
std::string Joined(const Values&... values) {
  std::ostringstream text;
  const char* separator = "";
  const auto add = [&](const auto& value) {
    using Value = std::decay_t<decltype(value)>;
    text << std::exchange(separator, "|");
    if constexpr (std::is_same_v<Value, CString>)
      text << value.Str();
    else if constexpr (std::is_same_v<Value, BYTE> || std::is_same_v<Value, bool>)
      text << int{value};
    else
      text << value;
  };
  (add(values), ...);
  return text.str();
}

/// The same for calls that change something: Answers{a(), b()} evaluates them from left to right.
struct Answers : std::string {
  template <class... Values>
  explicit Answers(const Values&... values) : std::string(Joined(values...)) {}
};

/// The items of a list that an operation fills, joined by ','.
template <class List>
std::string Listed(const List& list) {
  std::string text;
  for (const auto& item : list) text += (text.empty() ? "" : ",") + Joined(item);
  return text;
}

/// The rows of a table in one text: "1|Sea / 2|Air".
inline std::vector<std::string> Split(std::string_view rows, std::string_view separator = " / ") {
  std::vector<std::string> all;
  while (!rows.empty()) {
    const std::size_t end = rows.find(separator);
    all.emplace_back(rows.substr(0, end));
    rows.remove_prefix(end == rows.npos ? rows.size() : end + separator.size());
  }
  return all;
}

/// One operation on a catalogue whose tables are empty but for `before`.
struct Operation {
  const char* what;
  std::vector<const char*> before;  ///< statements, run beside the catalogue
  std::function<std::string(OpenCatalogue&)> call;
  std::string answer;
  const char* query = nullptr;  ///< asked afterwards, when there is one
  std::vector<std::string> after = {};
};

/// The call `catalogue.<expression>` with its answer as text.
#define ANSWER_OF(expression) [](OpenCatalogue& catalogue) { return Joined(catalogue.expression); }
/// Several in their order, on the catalogue `c`: ANSWERS(c.GetNewTagID(), c.IsTag(1u)).
#define ANSWERS(...) [](OpenCatalogue& c) { return Answers{__VA_ARGS__}; }

/// A call that fills a list, with its answer and the list.
template <class Owner, class List>
auto ListedBy(int (Owner::*fill)(List&)) {
  return [fill](OpenCatalogue& catalogue) {
    List list;
    const int answer = (catalogue.*fill)(list);
    return Joined(answer, Listed(list));
  };
}

class OperationTest : public CatalogueTest {
 protected:
  /// Runs every operation of a table, each on empty tables, and compares.
  void Check(const std::vector<Operation>& operations);
};

}  // namespace vdstomgr
