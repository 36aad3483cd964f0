#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vdsto {

/// A file that the user should know about, and why.
struct Remark {
  std::string path;
  std::string reason;
};

/// What an import did.
struct ImportSummary {
  uint64_t added = 0;
  uint64_t updated = 0;
  uint64_t unchanged = 0;
  uint64_t moved = 0;       ///< known files under another path than before
  uint64_t gone = 0;        ///< photos whose file is no longer on its disk
  uint64_t newly_gone = 0;  ///< those of them that were there when an import last looked
  uint64_t in_trash = 0;    ///< files of photos in the trash, left alone
  uint64_t not_pictures = 0;
  uint64_t hidden = 0;    ///< files and folders whose name begins with a dot
  uint64_t special = 0;   ///< devices, sockets and pipes
  uint64_t sidecars = 0;  ///< XMP files, read with the pictures that they stand beside
  uint64_t folders_created = 0;
  std::vector<Remark> broken;      ///< kept, but cannot be shown
  std::vector<Remark> damaged;     ///< kept, shown in part
  std::vector<Remark> unreadable;  ///< files and folders that could not be read
  std::vector<Remark> not_stored;  ///< pictures that the catalogue refused
  std::vector<Remark> not_there;   ///< places whose disk is not mounted
  std::vector<Remark> long_paths;  ///< kept without their location
  size_t unreadable_roots = 0;     ///< folders to import that are among the unreadable
  double seconds = 0;
  bool interrupted = false;

  uint64_t Pictures() const { return added + updated + moved + unchanged; }
};

}  // namespace vdsto
