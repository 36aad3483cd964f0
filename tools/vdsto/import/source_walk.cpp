#include "tools/vdsto/import/source_walk.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <system_error>

#include "tools/vdsto/text/source_location.h"

namespace vdsto {
namespace {

std::string ErrnoText() {
  return std::generic_category().message(errno);
}

}  // namespace

bool LeadsBack(const std::string& path, const std::string& root) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return false;
  std::error_code error;
  const std::string target = std::filesystem::canonical(path, error).string();
  return error || target == root || IsBelow(target, root) || IsBelow(root, target);
}

bool SourceWalk::Walk(const std::string& root, const std::string& folder) {
  root_ = root;
  struct stat above {};
  const bool is_on_known_disk = folder != root && stat(ParentOf(folder).c_str(), &above) == 0;
  return Enter(folder, is_on_known_disk ? std::optional<uint64_t>(above.st_dev) : std::nullopt);
}

bool SourceWalk::Enter(const std::string& folder, std::optional<uint64_t> disk_above) {
  struct stat status {};
  if (stat(folder.c_str(), &status) != 0) {
    unreadable_.push_back({folder, ErrnoText()});
    return true;
  }
  if (!entered_.emplace(status.st_dev, status.st_ino).second) return true;
  if (disk_above != status.st_dev) enter_disk_(folder);
  Listing listing = List(folder);
  if (!visit_(root_, folder, listing.files)) return false;
  listing.files.clear();
  return std::all_of(
      listing.folders.begin(), listing.folders.end(),
      [&](const std::string& sub_folder) { return Enter(sub_folder, status.st_dev); });
}

SourceWalk::Listing SourceWalk::List(const std::string& folder) {
  Listing listing;
  const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(folder.c_str()), &closedir);
  if (!directory) {
    unreadable_.push_back({folder, ErrnoText()});
    return listing;
  }
  while (const dirent* entry = readdir(directory.get())) {
    const std::string name = entry->d_name;
    if (name == "." || name == "..") continue;
    name.starts_with('.') ? void(++hidden_) : Sort(Joined(folder, name), listing);
  }
  std::sort(listing.folders.begin(), listing.folders.end());
  std::sort(listing.files.begin(), listing.files.end(),
            [](auto& a, auto& b) { return a.path < b.path; });
  return listing;
}

void SourceWalk::Sort(const std::string& path, Listing& listing) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    unreadable_.push_back({path, ErrnoText()});
  } else if (S_ISREG(status.st_mode)) {
    listing.files.push_back({path, StampFrom(status)});
  } else if (!S_ISDIR(status.st_mode)) {
    ++special_;
  } else if (!LeadsBack(path, root_)) {
    listing.folders.push_back(path);
  }
}

}  // namespace vdsto
