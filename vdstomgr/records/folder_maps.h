#pragma once

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/map.h"
#include "vdstomgr/records/folder_info.h"

namespace vdstomgr {

using FolderMap = CMap<DWORD, DWORD, FOLDERINFO, FOLDERINFO&>;
/// From a parent's id to the records of its children; the arrays belong to the map's owner.
using SubFolderMap = CMap<DWORD, DWORD, FolderArray*, FolderArray*>;
/// The folders that a walk has entered.
using VisitedFolders = CMap<DWORD, DWORD, DWORD, DWORD>;

/// Deletes the arrays of a map and empties it.
VDSTO_API void DeleteSubFolders(SubFolderMap& map);

}  // namespace vdstomgr
