#pragma once

#include <functional>
#include <memory>

#include "vdstomgr/platform/export.h"

namespace vdstomgr {

namespace dao {
class Connection;
}

/// A database file as it is when this object is made, to be copied while others go on writing it:
/// nobody waits for anybody. Until the object is gone the file's write-ahead log cannot be emptied
/// and grows with what others write. Not for use by two threads at once.
class VDSTO_API DatabaseSnapshot {
 public:
  /// Is told of pages; false ends the copying.
  using Progress = std::function<bool(int done, int total)>;

  /// Opens a file over a connection of its own. Texts are in the process's code page; of the
  /// password the places count that count elsewhere. Throws CDaoException: FileNotFound,
  /// InvalidPassword...
  DatabaseSnapshot(const char* path, const char* password);
  ~DatabaseSnapshot();
  DatabaseSnapshot(const DatabaseSnapshot&) = delete;
  DatabaseSnapshot& operator=(const DatabaseSnapshot&) = delete;

  /// Writes it into a file that must not exist yet, under the same password, and lets the engine
  /// check the copy. False when `progress` ended it. Then, and when it throws (CDaoException), no
  /// file is left. The device may not hold the copy yet.
  bool CopyTo(const char* path, const Progress& progress = {});

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace vdstomgr
