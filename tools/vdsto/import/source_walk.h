#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tools/vdsto/import/import_summary.h"
#include "tools/vdsto/picture/source_file.h"

namespace vdsto {

struct SourceEntry {
  std::string path;
  FileStamp stamp;
};

/// Does the link at `path` lead into the tree below `root`, whose folders are walked under their
/// own names, or above it, which never ends? False for what is no link.
bool LeadsBack(const std::string& path, const std::string& root);

/// Walks real folders depth first, names in byte order, each folder once. Files behind links count;
/// a link to a folder is followed unless it leads into or above the tree that is walked. Names that
/// begin with a dot are passed over.
class SourceWalk {
 public:
  /// Called for every folder with its regular files; false ends the walk.
  using Visit = std::function<bool(const std::string& root, const std::string& folder,
                                   const std::vector<SourceEntry>& files)>;

  /// Called for a root, and for every folder that lies on another disk than the one above it.
  using EnterDisk = std::function<void(const std::string& folder)>;

  SourceWalk(Visit visit, EnterDisk enter_disk)
      : visit_(std::move(visit)), enter_disk_(std::move(enter_disk)) {}

  /// Walks `folder`, which is `root`, an absolute path without links, or lies below it, but not
  /// again what an earlier call walked. False when `visit` ended the walk.
  bool Walk(const std::string& root, const std::string& folder);

  uint64_t Hidden() const { return hidden_; }
  /// Devices, sockets and pipes.
  uint64_t Special() const { return special_; }
  const std::vector<Remark>& Unreadable() const { return unreadable_; }

 private:
  struct Listing {
    std::vector<SourceEntry> files;
    std::vector<std::string> folders;
  };

  bool Enter(const std::string& folder, std::optional<uint64_t> disk_above);
  Listing List(const std::string& folder);
  void Sort(const std::string& path, Listing& listing);

  Visit visit_;
  EnterDisk enter_disk_;
  std::string root_;
  std::set<std::pair<uint64_t, uint64_t>> entered_;  // device and inode
  uint64_t hidden_ = 0;
  uint64_t special_ = 0;
  std::vector<Remark> unreadable_;
};

}  // namespace vdsto
