#include "tools/vdsto/library/import_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <system_error>
#include <thread>

#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

[[noreturn]] void ThrowErrno(const std::string& path, int error) {
  throw ToolError(ExitCode::kCannotOpen, path + ": " + std::generic_category().message(error));
}

int OpenLockFile(const std::string& library_folder) {
  std::error_code error;
  std::filesystem::create_directories(library_folder, error);
  if (error) throw ToolError(ExitCode::kCannotOpen, library_folder + ": " + error.message());
  const std::string path = Joined(library_folder, "import.lock");
  const int descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (descriptor < 0) ThrowErrno(path, errno);
  return descriptor;
}

}  // namespace

ImportLock::ImportLock(const std::string& library_folder, const std::function<void()>& waiting)
    : descriptor_(OpenLockFile(library_folder)) {
  try {
    while (flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
      if (errno != EWOULDBLOCK && errno != EINTR) ThrowErrno(library_folder, errno);
      waiting();
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
  } catch (...) {
    close(descriptor_);
    throw;
  }
}

ImportLock::~ImportLock() {
  close(descriptor_);
}

}  // namespace vdsto
