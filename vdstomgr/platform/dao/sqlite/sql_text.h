#pragma once

#include <string>
#include <string_view>

namespace vdstomgr::sqlite {

/// A name as the engine reads it whatever its bytes: "name".
std::string QuoteName(std::string_view name);

/// 'text'
std::string QuoteText(std::string_view text);

/// Would the engine take the name for its own row number?
bool IsRowidName(std::string_view name);

/// The texts that `print` makes of the items, with `separator` between them.
template <class Items, class Print>
std::string Join(const Items& items, std::string_view separator, Print print) {
  std::string joined;
  bool first = true;
  for (const auto& item : items) {
    if (!first) joined += separator;
    first = false;
    joined += print(item);
  }
  return joined;
}

}  // namespace vdstomgr::sqlite
