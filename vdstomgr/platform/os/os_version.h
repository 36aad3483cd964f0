#pragma once

#include <string>

namespace vdstomgr::os {

struct OsVersion {
  std::string name;     ///< "Linux", for instance
  std::string release;  ///< as the system writes it
};

OsVersion GetOsVersion();

}  // namespace vdstomgr::os
