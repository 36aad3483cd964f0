#pragma once
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace vdsto {

/// Hears of changes in real folders and those below that an import would walk. What other computers
/// change on a network disk is not told by the system. One thread uses it.
class FolderWatch {
 public:
  /// `is_there` is false when a root is gone, or its disk, and true when it is back.
  using Tell = std::function<void(const std::string& root, bool is_there)>;

  struct Changes {
    std::vector<std::string> folders;  ///< where things have changed; none lies below another
    std::set<std::string> unfinished;  ///< files there that somebody is still writing
  };

  /// Watches `roots`, absolute paths without links, but not the folder of the library. Throws
  /// ToolError when the system lets it watch no more folders.
  FolderWatch(const std::vector<std::string>& roots, std::string library_folder, Tell tell);
  ~FolderWatch();
  FolderWatch(const FolderWatch&) = delete;
  FolderWatch& operator=(const FolderWatch&) = delete;

  /// Waits until something has changed and everything has been quiet for `settling`. Where some is
  /// never quiet, what is comes after ten times as long. Answers no folders when the user has asked
  /// to stop. Throws ToolError.
  Changes WaitForChanges(std::chrono::milliseconds settling);
  /// Takes a change for one that has just been made.
  void NoteChange(const std::string& path);

 private:
  using Clock = std::chrono::steady_clock;
  using Identity = std::pair<uint64_t, uint64_t>;  // device and inode; both 0: not there

  struct Root {
    std::string path;
    bool is_disk;        // something is mounted there
    Identity watched{};  // what was there when it was last watched
    bool is_there = true;
  };
  struct Folder {
    std::string path;
    Identity identity;
  };

  static Identity IdentityOf(const std::string& path);
  static Identity IdentityOf(const Root& root);
  void Watch(const std::string& folder);
  bool Remember(int watch, const std::string& folder);
  void Forget(const std::string& folder);
  void Forget(int watch);
  bool IsToBeWatched(const std::string& path) const;
  std::vector<std::string> FoldersIn(const std::string& folder) const;
  std::string RootOf(const std::string& path) const;
  void LookAtRoots();
  void LookAtFolders();
  void LookAtEverything();
  void Wait(Clock::time_point until);
  void ReadEvents();
  void Take(int watch, uint32_t mask, const std::string& name);
  void TakeEntry(const std::string& path, uint32_t mask);
  Clock::time_point RoundTime(Clock::duration settling) const;
  Changes TakeChanges(Clock::time_point quiet_since);

  const std::string library_folder_;
  const Tell tell_;
  const int notifier_;
  const int mounts_;  // tells when a disk is mounted or unmounted; -1: nothing does
  std::vector<Root> roots_;
  std::unordered_map<int, Folder> folders_;           // by the system's number of their watch
  std::map<std::string, int> watches_;                // the same by path
  std::map<std::string, Clock::time_point> changed_;  // files and folders, and when it was last
  Clock::time_point first_change_{};                  // since the last round
};

}  // namespace vdsto
