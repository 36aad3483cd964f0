#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/framework/types.h"

/// The folders that every catalogue has: three roots and the trash folder of each.
namespace vdstomgr {

constexpr DWORD FolderID(std::int32_t number) {
  return static_cast<DWORD>(number);
}

inline constexpr DWORD kNoFolder = FolderID(-1);  ///< parent of a top-level folder; "not found"

inline constexpr DWORD kPersonalRoot = 0;
inline constexpr DWORD kPublicRoot = FolderID(-10);
inline constexpr DWORD kGuestRoot = FolderID(-20);

inline constexpr DWORD kPersonalTrash = FolderID(-2);
inline constexpr DWORD kPublicTrash = FolderID(-12);
inline constexpr DWORD kGuestTrash = FolderID(-22);

constexpr bool IsRootFolder(DWORD id) {
  return id == kPersonalRoot || id == kPublicRoot || id == kGuestRoot;
}

/// Is it one of the catalogue's own folders, or an id that stands for something else? Such a folder
/// is never deleted.
constexpr bool IsReservedFolder(DWORD id) {
  constexpr DWORD kReserved[] = {kPersonalRoot,  kNoFolder,     kPersonalTrash, kPublicRoot,
                                 kPublicTrash,   kGuestRoot,    kGuestTrash,    FolderID(-250),
                                 FolderID(-251), FolderID(-252)};
  return std::ranges::find(kReserved, id) != std::end(kReserved);
}

/// The space a root stands for: 0 personal, 1 public, 2 guest; -1 for any other folder.
constexpr std::int32_t SpaceTypeOfRoot(DWORD id) {
  return id == kPersonalRoot ? 0 : id == kPublicRoot ? 1 : id == kGuestRoot ? 2 : -1;
}

/// The fixed name of a root in the process's code page; empty for any other folder.
VDSTO_API CString RootFolderName(DWORD id);
/// The name of the trash folders in the process's code page.
VDSTO_API CString TrashFolderName();

}  // namespace vdstomgr
