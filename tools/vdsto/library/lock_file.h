#pragma once
#include <string>

namespace vdsto {

/// A file of a library folder that one process at a time holds. The lock ends with its process,
/// however that ends; the file stays.
class LockFile {
 public:
  /// Makes the library folder when it is not there. Throws ToolError when it cannot be written.
  LockFile(const std::string& library_folder, const std::string& name);
  ~LockFile();
  LockFile(const LockFile&) = delete;
  LockFile& operator=(const LockFile&) = delete;

  /// Takes the lock unless another process holds it. Throws ToolError.
  bool Try();

 private:
  std::string path_;
  int descriptor_;
};

}  // namespace vdsto
