#include "tools/vdsto/selection/trash_selection.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <unordered_set>

#include "tools/vdsto/selection/name_pattern.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

namespace fs = std::filesystem;

std::string PathOfTrashed(const TrashedPhoto& trashed) {
  return Joined(PathForUsers(trashed.folder), trashed.photo.GetFileName());
}

std::string LocationOfFile(const std::string& text) {
  std::error_code error;
  const fs::path folder = fs::canonical(fs::absolute(text, error).parent_path(), error);
  return error ? std::string() : LocationOf(Joined(folder.string(), LastComponent(text)));
}

class TrashSelector {
 public:
  explicit TrashSelector(Library& library) : all_(PhotosInTrash(library)) {}

  /// False when it is nothing.
  bool Add(const Name& name) {
    const std::string guid = AsciiLower(name.text);
    const std::string location = LocationOfFile(name.text);
    const std::string path = PathForUsers(Composed(WithoutSlash(name.text)));
    return AddWhere([&](auto& t) { return guid == AsciiLower(t.photo.szGUID); }) ||
           AddWhere([&](auto& t) { return !location.empty() && location == t.photo.GetOPURL(); }) ||
           AddWhere([&](auto& t) { return path == PathOfTrashed(t); }) ||
           AddWhere([&](auto& t) { return IsInFolder(t, path); }) || AddNamed(path) ||
           (name.may_be_pattern && IsPattern(path) && AddMatches(path));
  }

  std::vector<TrashedPhoto> All() const { return all_; }
  std::vector<TrashedPhoto> Take() { return std::move(chosen_); }

 private:
  static std::string WithoutSlash(std::string text) {
    while (text.size() > 1 && text.ends_with('/')) text.pop_back();
    return text;
  }

  static bool IsInFolder(const TrashedPhoto& trashed, const std::string& path) {
    const std::string folder = PathForUsers(trashed.folder);
    return !folder.empty() && (folder == path || IsBelow(folder, path));
  }

  template <class Condition>
  bool AddWhere(Condition condition) {
    bool found = false;
    for (const TrashedPhoto& trashed : all_) {
      if (!condition(trashed)) continue;
      found = true;
      if (known_.insert(trashed.photo.szGUID).second) chosen_.push_back(trashed);
    }
    return found;
  }

  bool AddNamed(const std::string& name) {
    const auto is_named = [&](const TrashedPhoto& t) { return name == t.photo.GetFileName(); };
    if (std::count_if(all_.begin(), all_.end(), is_named) > 1) {
      throw ToolError(ExitCode::kNotFound, "several photos in the trash are named " +
                                               Printable(name) +
                                               ": name the folder too, as in vdsto trash ls");
    }
    return AddWhere(is_named);
  }

  bool AddMatches(const std::string& pattern) {
    return AddWhere([&](const TrashedPhoto& trashed) {
      return MatchesPattern(pattern, PathOfTrashed(trashed));
    });
  }

  std::vector<TrashedPhoto> all_;
  std::vector<TrashedPhoto> chosen_;
  std::unordered_set<std::string> known_;
};

}  // namespace

std::vector<TrashedPhoto> SelectTrashed(Library& library, const TrashWords& words) {
  TrashSelector selector(library);
  if (words.words.empty()) return selector.All();
  SelectNames(words, "photo", "vdsto trash ls shows what is in the trash",
              [&](const Name& name) { return selector.Add(name); });
  return selector.Take();
}

std::string PathForUsers(const std::string& full_path) {
  const std::string root = vdstomgr::RootFolderName(vdstomgr::kPersonalRoot).Str();
  return IsBelow(full_path, root) ? full_path.substr(root.size() + 1) : full_path;
}

}  // namespace vdsto
