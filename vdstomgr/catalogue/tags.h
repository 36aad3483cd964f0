#pragma once

#include "vdstomgr/catalogue/photo_attributes.h"

namespace vdstomgr::catalogue {

/// Tags, and which photos carry them.
class VDSTO_API Tags : public PhotoAttributes {
 public:
  bool IsTag(const char* name);
  bool IsTag(DWORD id);
};

}  // namespace vdstomgr::catalogue
