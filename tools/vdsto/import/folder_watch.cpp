#include "tools/vdsto/import/folder_watch.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <thread>

#include "tools/vdsto/import/interruption.h"
#include "tools/vdsto/import/source_walk.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

namespace fs = std::filesystem;

constexpr uint32_t kChanges = IN_MODIFY | IN_CLOSE_WRITE | IN_CREATE | IN_DELETE | IN_MOVED_FROM |
                              IN_MOVED_TO | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF;
constexpr int kLongest = 10;  // times the settling time
/// A file that is being written tells of every piece: they are heard of together.
constexpr std::chrono::milliseconds kPause{50};
/// So often the roots are looked at, and whether the user wants to stop.
constexpr std::chrono::milliseconds kLookUp{1000};

[[noreturn]] void ThrowLimit(const std::string& what, const std::string& setting) {
  std::string limit;
  std::ifstream("/proc/sys/fs/inotify/" + setting) >> limit;
  throw ToolError(ExitCode::kNotFound,
                  what + ": the system allows " + limit +
                      ", together with other programs. Allow more: sudo sysctl fs.inotify." +
                      setting + "=N (in a file of /etc/sysctl.d, it stays)");
}

int OpenNotifier() {
  const int notifier = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
  if (notifier >= 0) return notifier;
  if (errno == EMFILE) ThrowLimit("no more programs can watch folders", "max_user_instances");
  throw ToolError(ExitCode::kUnexpected,
                  "folders cannot be watched: " + std::generic_category().message(errno));
}

uint64_t DeviceAt(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 ? status.st_dev : 0;
}

bool IsMountPoint(const std::string& path) {
  return path == "/" || DeviceAt(path) != DeviceAt(ParentOf(path));
}

bool IsSame(const std::string& a, const std::string& b) {
  std::error_code ignored;
  return fs::equivalent(a, b, ignored);
}

bool HasOneAbove(const std::string& folder, const std::set<std::string>& folders) {
  for (std::string above = folder; above != "/";) {
    above = ParentOf(above);
    if (folders.contains(above)) return true;
  }
  return false;
}

}  // namespace

FolderWatch::FolderWatch(const std::vector<std::string>& roots, std::string library_folder,
                         Tell tell)
    : library_folder_(std::move(library_folder)),
      tell_(std::move(tell)),
      notifier_(OpenNotifier()),
      mounts_(open("/proc/self/mounts", O_RDONLY | O_CLOEXEC)) {
  for (const std::string& root : roots) roots_.push_back({root, IsMountPoint(root)});
  try {
    LookAtRoots();
  } catch (...) {
    close(notifier_);
    close(mounts_);
    throw;
  }
  changed_.clear();
}

FolderWatch::~FolderWatch() {
  close(notifier_);
  close(mounts_);
}

FolderWatch::Identity FolderWatch::IdentityOf(const std::string& path) {
  struct stat status {};
  const bool is_folder = stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
  return is_folder ? Identity(status.st_dev, status.st_ino) : Identity();
}

/// Where a disk is no longer mounted, an empty folder is left.
FolderWatch::Identity FolderWatch::IdentityOf(const Root& root) {
  return root.is_disk && !IsMountPoint(root.path) ? Identity() : IdentityOf(root.path);
}

/// The watch is set before the folder is listed, so that a folder that is made meanwhile is found
/// at least once.
void FolderWatch::Watch(const std::string& folder) {
  if (IsSame(folder, library_folder_)) return;
  const int watch = inotify_add_watch(notifier_, folder.c_str(), kChanges | IN_ONLYDIR);
  if (watch < 0 && errno == ENOSPC)
    ThrowLimit(Printable(folder) + " cannot be watched, too many folders are", "max_user_watches");
  if (watch < 0 || !Remember(watch, folder)) return;
  for (const std::string& below : FoldersIn(folder)) Watch(below);
}

/// False for a folder that is watched under another name already, as an import walks it once.
bool FolderWatch::Remember(int watch, const std::string& folder) {
  Folder& known = folders_[watch];
  const bool is_alias = !known.path.empty() && known.path != folder && IsSame(known.path, folder);
  if (is_alias) return false;
  if (known.path != folder) watches_.erase(known.path);
  known = {folder, IdentityOf(folder)};
  watches_[folder] = watch;
  return true;
}

/// And all that lies below.
void FolderWatch::Forget(const std::string& folder) {
  std::vector<int> watches;
  if (const auto own = watches_.find(folder); own != watches_.end()) watches.push_back(own->second);
  const std::string below = folder + "/";
  for (auto at = watches_.lower_bound(below); at != watches_.end() && at->first.starts_with(below);
       ++at)
    watches.push_back(at->second);
  for (const int watch : watches) Forget(watch);
}

void FolderWatch::Forget(int watch) {
  const auto folder = folders_.find(watch);
  for (Root& root : roots_)
    if (root.watched == folder->second.identity) root.watched = {};
  watches_.erase(folder->second.path);
  folders_.erase(folder);
  inotify_rm_watch(notifier_, watch);
}

bool FolderWatch::IsToBeWatched(const std::string& path) const {
  std::error_code ignored;
  return !LastComponent(path).starts_with('.') && fs::is_directory(path, ignored) &&
         !LeadsBack(path, RootOf(path));
}

std::vector<std::string> FolderWatch::FoldersIn(const std::string& folder) const {
  std::vector<std::string> folders;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code ignored;
    const bool may_be = entry->is_directory(ignored) || entry->is_symlink(ignored);
    if (may_be && IsToBeWatched(entry->path().string())) folders.push_back(entry->path().string());
  }
  std::sort(folders.begin(), folders.end());
  return folders;
}

/// Empty for a path outside.
std::string FolderWatch::RootOf(const std::string& path) const {
  const auto holds = [&](const Root& root) {
    return path == root.path || IsBelow(path, root.path);
  };
  const auto root = std::find_if(roots_.begin(), roots_.end(), holds);
  return root == roots_.end() ? std::string() : root->path;
}

void FolderWatch::LookAtRoots() {
  for (Root& root : roots_) {
    const Identity now = IdentityOf(root);
    const bool is_there = now != Identity();
    if (!is_there) Forget(root.path);
    if (is_there && now != root.watched) {
      Watch(root.path);
      NoteChange(root.path);
      root.watched = now;
    }
    if (is_there != std::exchange(root.is_there, is_there)) tell_(root.path, is_there);
  }
}

/// Which are others than they were: what is mounted over a folder hides it.
void FolderWatch::LookAtFolders() {
  const auto watches = watches_;
  for (const auto& [path, watch] : watches) {
    const auto folder = folders_.find(watch);
    if (folder == folders_.end() || IdentityOf(path) == folder->second.identity) continue;
    Forget(path);
    if (IsToBeWatched(path)) Watch(path);
    NoteChange(path);
  }
}

/// After the system has lost events.
void FolderWatch::LookAtEverything() {
  LookAtFolders();
  for (Root& root : roots_) root.watched = {};
  LookAtRoots();
}

FolderWatch::Changes FolderWatch::WaitForChanges(std::chrono::milliseconds settling) {
  while (!IsInterrupted()) {
    Wait(std::min(RoundTime(settling), Clock::now() + kLookUp));
    const auto now = Clock::now();
    if (now < RoundTime(settling)) continue;
    Changes changes = TakeChanges(now - settling);
    if (!changes.folders.empty()) return changes;
  }
  return {};
}

/// When all is quiet or, where that takes long, some is.
FolderWatch::Clock::time_point FolderWatch::RoundTime(Clock::duration settling) const {
  if (changed_.empty()) return Clock::time_point::max();
  const auto [oldest, newest] =
      std::minmax_element(changed_.begin(), changed_.end(),
                          [](const auto& a, const auto& b) { return a.second < b.second; });
  const auto latest = std::max(first_change_ + kLongest * settling, oldest->second + settling);
  return std::min(newest->second + settling, latest);
}

void FolderWatch::Wait(Clock::time_point until) {
  using std::chrono::milliseconds;
  const auto left =
      std::max(std::chrono::ceil<milliseconds>(until - Clock::now()), milliseconds(0));
  std::array<pollfd, 2> waiting{{{notifier_, POLLIN, 0}, {mounts_, POLLPRI, 0}}};
  if (poll(waiting.data(), waiting.size(), static_cast<int>(left.count())) > 0) {
    if (waiting[1].revents != 0) LookAtFolders();
    if (waiting[0].revents != 0) ReadEvents();
    std::this_thread::sleep_for(kPause);
  }
  LookAtRoots();
}

void FolderWatch::ReadEvents() {
  std::array<char, 1 << 16> buffer;
  for (ssize_t size; (size = read(notifier_, buffer.data(), buffer.size())) > 0;) {
    for (const char* at = buffer.data(); at < buffer.data() + size;) {
      inotify_event event;
      std::memcpy(&event, at, sizeof event);
      const char* const name = at + sizeof event;
      Take(event.wd, event.mask, event.len > 0 ? name : "");
      at = name + event.len;
    }
  }
}

void FolderWatch::Take(int watch, uint32_t mask, const std::string& name) {
  if ((mask & IN_Q_OVERFLOW) != 0) return LookAtEverything();
  const auto folder = folders_.find(watch);
  if (folder == folders_.end() || name.starts_with('.')) return;
  const std::string path = folder->second.path;
  if (!name.empty()) return TakeEntry(Joined(path, name), mask);
  if ((mask & (IN_IGNORED | IN_MOVE_SELF | IN_UNMOUNT)) != 0) Forget(path);
  NoteChange(path);
}

/// A folder that was moved keeps its watch, under a name that is no longer its own.
void FolderWatch::TakeEntry(const std::string& path, uint32_t mask) {
  if ((mask & IN_ISDIR) != 0 && IsSame(path, library_folder_)) return;
  if ((mask & (IN_DELETE | IN_MOVED_FROM)) != 0) Forget(path);
  const bool is_new = (mask & (IN_CREATE | IN_MOVED_TO)) != 0;
  const bool may_be_readable_now = (mask & IN_ATTRIB) != 0 && !watches_.contains(path);
  if ((is_new || may_be_readable_now) && IsToBeWatched(path)) Watch(path);
  NoteChange(path);
}

void FolderWatch::NoteChange(const std::string& path) {
  const auto now = Clock::now();
  if (changed_.empty()) first_change_ = now;
  changed_[path] = now;
}

/// What is no folder, or no longer, has changed in the one above it.
FolderWatch::Changes FolderWatch::TakeChanges(Clock::time_point quiet_since) {
  std::set<std::string> folders;
  Changes changes;
  for (const auto& [path, time] : changed_) {
    if (time > quiet_since) {
      changes.unfinished.insert(path);
      continue;
    }
    std::error_code ignored;
    const std::string folder = fs::is_directory(path, ignored) ? path : ParentOf(path);
    if (fs::is_directory(folder, ignored) && !RootOf(folder).empty()) folders.insert(folder);
  }
  std::erase_if(changed_, [&](const auto& change) { return change.second <= quiet_since; });
  first_change_ = Clock::now();
  std::copy_if(folders.begin(), folders.end(), std::back_inserter(changes.folders),
               [&](const std::string& folder) { return !HasOneAbove(folder, folders); });
  return changes;
}

}  // namespace vdsto
