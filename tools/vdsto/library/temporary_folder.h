#pragma once
#include <string>

namespace vdsto {

/// A folder of this process's own among the temporary files ($TMPDIR, else /tmp), which nobody else
/// may look into; gone with the object, and with all that is in it.
class TemporaryFolder {
 public:
  /// Throws ToolError.
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace vdsto
