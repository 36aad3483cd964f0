#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace vdsto {

/// The keywords of a picture, as tags can be made of them: composed, trimmed, at most 64 characters
/// each, each once in whatever case, and no more than anybody gives. A comma separates keywords,
/// also within one, because it separates tags wherever a host lists them.
class Keywords {
 public:
  void Add(std::string_view text);
  /// Every level of "여행|제주도|성산", split at `separator`: who looks for 제주도 means these,
  /// too.
  void AddLevels(std::string_view path, char separator);

  std::vector<std::string> Take() { return std::move(keywords_); }

 private:
  void AddOne(std::string_view text);

  std::vector<std::string> keywords_;
};

}  // namespace vdsto
