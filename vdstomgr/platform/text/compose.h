#pragma once

#include <string>
#include <string_view>

/// What composed texts are put together with.
namespace vdstomgr {

/// Appends `text` with every `quote` in it doubled.
inline void AppendDoubled(std::string& composed, std::string_view text, char quote) {
  for (std::size_t at; (at = text.find(quote)) != std::string_view::npos;) {
    composed.append(text.substr(0, at + 1)).push_back(quote);
    text.remove_prefix(at + 1);
  }
  composed.append(text);
}

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

}  // namespace vdstomgr
