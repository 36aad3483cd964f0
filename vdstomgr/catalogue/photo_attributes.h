#pragma once

#include "vdstomgr/catalogue/photos.h"

namespace vdstomgr::catalogue {

/// Single attributes of photos.
class VDSTO_API PhotoAttributes : public Photos {
 public:
  /// Marks a photo for the synchronisation of tags; false when there is no such photo. The list
  /// form does not tell.
  bool SetTagSyncFlag(const char* guid);
  bool SetTagSyncFlag(const CStringArray& guids);
};

}  // namespace vdstomgr::catalogue
