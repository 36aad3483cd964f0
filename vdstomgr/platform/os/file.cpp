#include "vdstomgr/platform/os/file.h"

#include <atomic>

namespace vdstomgr::os {
namespace {

std::atomic<FileSystem*> files_in_force{nullptr};

}  // namespace

FileSystem& Files() {
  FileSystem* const files = files_in_force;
  return files != nullptr ? *files : SystemFiles();
}

void SetFiles(FileSystem* files) {
  files_in_force = files;
}

}  // namespace vdstomgr::os
