#include "vdstomgr/platform/os/os_version.h"

#include <sys/utsname.h>

namespace vdstomgr::os {

OsVersion GetOsVersion() {
  utsname system{};
  if (uname(&system) != 0) return {};
  return {system.sysname, system.release};
}

}  // namespace vdstomgr::os
