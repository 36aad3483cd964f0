#include "tools/vdsto/library/lock_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "tools/vdsto/library/library.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
LockFile::LockFile(const std::string& library_folder, const std::string& name)
    : path_(Joined(library_folder, name)) {
  std::error_code error;
  std::filesystem::create_directories(library_folder, error);
  if (error) ThrowSystemError(library_folder, error);
  descriptor_ = open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (descriptor_ < 0 && (errno == EACCES || errno == EROFS))
    throw ToolError(ExitCode::kCannotOpen, ReadOnlyText(library_folder));
  if (descriptor_ < 0) ThrowErrno(path_, errno);
}

LockFile::~LockFile() {
  close(descriptor_);
}

bool LockFile::Try() {
  if (flock(descriptor_, LOCK_EX | LOCK_NB) == 0) return true;
  if (errno != EWOULDBLOCK && errno != EINTR) ThrowErrno(path_, errno);
  return false;
}

}  // namespace vdsto
