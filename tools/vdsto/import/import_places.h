#pragma once
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "tools/vdsto/library/photo_facts.h"

namespace vdsto {

/// A text that names the disk (file system) which the folder at `path` lies on, the same as long as
/// that disk has its contents; empty when there is no such folder.
std::string DeviceOf(const std::string& path);

/// Tells a file that is gone from one whose disk is not mounted. A place whose disk has another
/// name than it had counts as there when a file that was known on it still is: some disks get a new
/// name each time. Any thread may call it.
class ImportPlaces {
 public:
  /// `recorded` by earlier imports, and the folders that are imported now.
  ImportPlaces(std::vector<ImportPlace> recorded, const std::vector<std::string>& roots);

  /// A file that is known from an earlier import.
  void Observe(const PhotoFacts& file);
  /// Is the disk there that `file` was on? One whose place is not known is, below the imported
  /// folders.
  bool IsThere(const PhotoFacts& file) const;
  /// Is `path` one of the folders that are imported now, or below one?
  bool IsImported(const std::string& path) const;

  /// The walk has come to a root or to another disk.
  void Enter(const std::string& folder);
  /// The place of a file that is there: the deepest one above it.
  uint32_t PlaceOf(const std::string& path) const;
  std::vector<ImportPlace> Places() const;
  /// The folder of a place; empty when it is not known.
  std::string FolderOf(uint32_t place_id) const;

 private:
  struct State {
    ImportPlace place;
    std::string device_now;
    bool is_there;
  };

  const State* Find(uint32_t id) const;

  const std::vector<std::string> roots_;
  mutable std::mutex mutex_;
  std::vector<State> states_;  // guarded by mutex_
};

}  // namespace vdsto
