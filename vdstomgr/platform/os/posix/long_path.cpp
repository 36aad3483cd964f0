#include "vdstomgr/platform/os/long_path.h"

namespace vdstomgr::os {

std::string LongPath(const std::string& path) {
  return path;
}

}  // namespace vdstomgr::os
