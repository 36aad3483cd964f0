#pragma once

#include <memory>
#include <string>

#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/os/file.h"

namespace vdstomgr {

/// The path up to its last '.' and ".pdx"; empty when there is no '.'.
CString IndexPathOf(const CString& data_path);
/// The path in UTF-8, as the file system takes it.
std::string NativePath(const CString& path);

/// A file that is to go, if it is there: claimed, so that nobody opens it for writing until it is
/// deleted. Of several files all should be free before the first is deleted.
class FileToDelete {
 public:
  /// An empty path names no file.
  explicit FileToDelete(const CString& path);

  /// False when somebody may be writing the file, or when it is none that can be deleted.
  bool IsFree() const { return is_free_; }
  /// Deletes it; true also when there is none.
  bool Delete();

 private:
  std::unique_ptr<os::ExclusiveFile> file_;
  bool is_free_;
};

/// Deletes both files of a storage, or none when somebody has either of them open for writing. True
/// when they are gone.
bool DeleteStorageFiles(const CString& data_path);

/// Whether there is anything of that name.
bool IsThere(const CString& path);
/// A name made of the path and `suffix` that is not taken, with ".2" and so on where it must be.
CString FreeNameOf(const CString& path, const char* suffix);

/// Deletes a file if it is there and nobody has it open for writing.
void DeleteUnlessInUse(const CString& path);
/// False when there is no such file, when somebody has it open for writing, or when the new name is
/// taken.
bool MoveTo(const CString& from, const CString& to);

}  // namespace vdstomgr
