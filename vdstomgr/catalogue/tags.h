#pragma once

#include "vdstomgr/catalogue/photos.h"

namespace vdstomgr::catalogue {

/// Tags, and which photos carry them.
class VDSTO_API Tags : public Photos {
 public:
  bool IsTag(const char* name);
  bool IsTag(DWORD id);
};

}  // namespace vdstomgr::catalogue
