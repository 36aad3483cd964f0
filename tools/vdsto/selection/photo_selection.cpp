#include "tools/vdsto/selection/photo_selection.h"

#include <iostream>
#include <optional>
#include <unordered_set>

#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/selection/name_pattern.h"
#include "tools/vdsto/selection/pattern_search.h"
#include "tools/vdsto/selection/unknown_name.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

class PhotoSelector {
 public:
  PhotoSelector(Library& library, bool recursive)
      : library_(library), paths_(library), recursive_(recursive) {}

  /// False when it is nothing.
  bool Add(const Name& name) {
    if (const auto photo = paths_.FindPhoto(name.text)) return Add(photo->szGUID);
    if (const auto folder = paths_.FindFolder(name.text)) return AddFolder(*folder);
    if (const auto photo = paths_.FindNamed(name.text)) return Add(photo->szGUID);
    return name.may_be_pattern && IsPattern(name.text) && AddMatches(name.text);
  }

  CStringArray Take() { return std::move(guids_); }

 private:
  bool Add(const std::string& guid) {
    if (known_.insert(guid).second) guids_.Add(guid.c_str());
    return true;
  }

  bool AddFolder(uint32_t folder) {
    CDWordArray folders{folder};
    if (recursive_) {
      library_.Call([&](auto& catalogue) { return catalogue.GetSubFolder(folder, folders, true); });
    }
    for (const DWORD id : folders) {
      for (const PHOTOINFO& photo : library_.PhotosIn(id)) Add(photo.szGUID);
    }
    return true;
  }

  bool AddMatches(const std::string& pattern) {
    if (!patterns_) patterns_.emplace(library_);
    const Matches matches = patterns_->Find(pattern);
    for (const std::string& guid : matches.photos) Add(guid);
    if (pattern.ends_with('/')) {
      for (const uint32_t folder : matches.folders) AddFolder(folder);
      return !matches.folders.empty();
    }
    if (!matches.photos.empty() || matches.folders.empty()) return !matches.photos.empty();
    throw ToolError(ExitCode::kNotFound, "no photo " + Printable(pattern) + ", but " +
                                             Counted(matches.folders.size(), "folder") +
                                             ": end it with / for the photos in them");
  }

  Library& library_;
  CataloguePath paths_;
  const bool recursive_;
  std::optional<PatternSearch> patterns_;  // made when it is needed
  std::unordered_set<std::string> known_;
  CStringArray guids_;
};

}  // namespace

CStringArray SelectPhotos(Library& library, const PhotoWords& words) {
  PhotoSelector selector(library, words.recursive);
  SelectNames(words, "photo", "vdsto ls shows a folder's photos",
              [&](const Name& name) { return selector.Add(name); });
  return selector.Take();
}

}  // namespace vdsto
