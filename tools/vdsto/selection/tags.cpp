#include "tools/vdsto/selection/tags.h"

#include <algorithm>
#include <set>

#include "tools/vdsto/selection/name_pattern.h"
#include "tools/vdsto/selection/new_text.h"
#include "tools/vdsto/selection/unknown_name.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr size_t kNameCharacters = 64;
constexpr const char* kAdvice = "vdsto tag ls shows all tags";

vdstomgr::TagArray AllTags(Library& library) {
  vdstomgr::TagArray tags;
  library.Call([&](auto& catalogue) { return catalogue.GetTagList(tags); });
  return tags;
}

std::vector<TAGINFO> TagsLike(Library& library, const std::string& pattern) {
  std::vector<TAGINFO> found;
  for (const TAGINFO& tag : AllTags(library)) {
    if (MatchesPattern(Composed(pattern), Composed(tag.szTagName))) found.push_back(tag);
  }
  return found;
}

}  // namespace

std::string NewTagName(const std::string& text) {
  std::string name = NewName("tag's name", text, kNameCharacters);
  if (name.find(',') == std::string::npos) return name;
  throw ToolError(ExitCode::kUsage, "a comma cannot be in the name of a tag: it separates tags");
}

TAGINFO TagNamed(Library& library, const std::string& name) {
  if (const auto tag = FindTag(library, name)) return *tag;
  throw NotInCatalogue("tag", {name}, kAdvice);
}

std::vector<TAGINFO> SelectTags(Library& library, const WordList& words) {
  std::vector<TAGINFO> tags;
  const auto add = [&](const TAGINFO& tag) {
    const auto is_same = [&](const TAGINFO& known) { return known.dwTagID == tag.dwTagID; };
    if (std::none_of(tags.begin(), tags.end(), is_same)) tags.push_back(tag);
  };
  SelectNames(words, "tag", kAdvice, [&](const Name& name) {
    if (const auto tag = FindTag(library, name.text)) return add(*tag), true;
    if (!name.may_be_pattern || !IsPattern(name.text)) return false;
    const auto found = TagsLike(library, name.text);
    std::for_each(found.begin(), found.end(), add);
    return !found.empty();
  });
  return tags;
}

TagsOfPhotos::TagsOfPhotos(Library& library) : library_(library), all_(AllTags(library)) {}

std::vector<TAGINFO> TagsOfPhotos::Of(const std::string& guid) {
  vdstomgr::TagArray own;
  library_.Call([&](auto& catalogue) { return catalogue.GetTagLists(guid.c_str(), own); });
  std::set<uint32_t> ids;
  for (const TAGINFO& tag : own) ids.insert(tag.dwTagID);
  std::vector<TAGINFO> tags;
  std::copy_if(all_.begin(), all_.end(), std::back_inserter(tags),
               [&](const TAGINFO& tag) { return ids.count(tag.dwTagID) != 0; });
  return tags;
}

}  // namespace vdsto
