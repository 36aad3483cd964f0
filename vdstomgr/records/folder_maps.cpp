#include "vdstomgr/records/folder_maps.h"

namespace vdstomgr {

void DeleteSubFolders(SubFolderMap& map) {
  for (const auto& [parent, children] : map) delete children;
  map.RemoveAll();
}

}  // namespace vdstomgr
