#pragma once
#include <functional>
#include <string>

#include "tools/vdsto/library/lock_file.h"

namespace vdsto {

/// Only one import at a time works on a library folder: a second one would take the first one's new
/// photos for missing. The lock ends with its process, however that ends.
class ImportLock {
 public:
  /// Makes the library folder when it is not there. While another process holds the lock, calls
  /// `waiting` over and over until it throws or the lock is free. Throws ToolError when the folder
  /// cannot be written.
  ImportLock(const std::string& library_folder, const std::function<void()>& waiting);

 private:
  LockFile file_;
};

}  // namespace vdsto
