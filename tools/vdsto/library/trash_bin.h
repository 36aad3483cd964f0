#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "tools/vdsto/library/library.h"

/// The trash: photos that were deleted and may come back. They lie in the trash folder of their
/// space with all that is known of them, and a row of the trash table tells where they were.
namespace vdsto {

struct TrashedPhoto {
  PHOTOINFO photo;
  std::string folder;   ///< where it was, from a root's name down; empty when it is not known
  int32_t deleted = 0;  ///< seconds since 1970
};

constexpr bool IsTrashFolder(uint32_t folder) {
  return folder == vdstomgr::kPersonalTrash || folder == vdstomgr::kPublicTrash ||
         folder == vdstomgr::kGuestTrash;
}

/// By space and name.
std::vector<TrashedPhoto> PhotosInTrash(Library& library);
/// The photos of the list that are not there are passed over. Throws ToolError; each photo is in
/// its folder or in the trash then.
void PutIntoTrash(Library& library, const CStringArray& guids);
/// Brings a photo back into a folder.
void TakeOutOfTrash(Library& library, const std::string& guid, uint32_t folder);
/// Deletes photos with all that hangs on them, and then their rows of the trash table.
void DeleteForGood(Library& library, const CStringArray& guids);
/// Photos in the trash that were in or below the folder at `old_path` go back to `new_path`.
void FollowMove(Library& library, const std::string& old_path, const std::string& new_path);

}  // namespace vdsto
