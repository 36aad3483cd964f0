#include "tools/vdsto/picture/keywords.h"

#include <algorithm>

#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr size_t kMostCharacters = 64;
constexpr size_t kMostKeywords = 500;

template <class Use>
void ForEachPiece(std::string_view text, char separator, Use use) {
  while (true) {
    const size_t end = text.find(separator);
    use(text.substr(0, end));
    if (end == std::string_view::npos) return;
    text.remove_prefix(end + 1);
  }
}

}  // namespace

void Keywords::Add(std::string_view text) {
  ForEachPiece(text, ',', [&](std::string_view piece) { AddOne(piece); });
}

void Keywords::AddLevels(std::string_view path, char separator) {
  ForEachPiece(path, separator, [&](std::string_view level) { Add(level); });
}

void Keywords::AddOne(std::string_view text) {
  const std::string keyword = Trimmed(FirstCharacters(DecodedText(text), kMostCharacters));
  const auto is_same = [&](const std::string& known) {
    return AsciiLower(known) == AsciiLower(keyword);
  };
  if (keyword.empty() || keywords_.size() >= kMostKeywords ||
      std::any_of(keywords_.begin(), keywords_.end(), is_same))
    return;
  keywords_.push_back(keyword);
}

}  // namespace vdsto
