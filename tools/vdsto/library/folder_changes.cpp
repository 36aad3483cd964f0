#include "tools/vdsto/library/folder_changes.h"

#include <algorithm>
#include <cstring>

#include "tools/vdsto/library/trash_bin.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

constexpr int kTriesForAnId = 100;

/// Ids of the catalogue's own folders are below zero.
uint32_t NextFolderId(Library& library) {
  int32_t highest = 0;
  for (const FOLDERINFO& folder : library.AllFolders())
    highest = std::max(highest, static_cast<int32_t>(folder.dwFolderID));
  return static_cast<uint32_t>(highest) + 1;
}

FOLDERINFO NewFolder(Library& library, uint32_t parent, const std::string& name) {
  FOLDERINFO folder;
  folder.dwParentID = parent;
  std::strncpy(folder.szFolderName, name.c_str(), sizeof folder.szFolderName - 1);
  library.Call([&](auto& catalogue) {
    folder.nSpaceType = static_cast<int32_t>(catalogue.GetFolderType(parent));
    folder.szModifiedDate = folder.szIModifiedDate = catalogue.GetTime();
    return true;
  });
  return folder;
}

}  // namespace

void RequireName(const std::string& name, size_t most_characters) {
  const auto refuse = [&](const std::string& reason) {
    throw ToolError(ExitCode::kUsage, "'" + Printable(name) + "' is no name: " + reason);
  };
  if (name.empty() || name == "." || name == "..") refuse("give one that says what is in it");
  if (name.find('/') != std::string::npos) refuse("it has a '/'");
  if (CharacterCount(name) > most_characters)
    refuse("it has more than " + std::to_string(most_characters) + " characters");
}

std::optional<uint32_t> FindSubFolder(Library& library, uint32_t parent, const std::string& name) {
  const uint32_t id =
      library.Call([&](auto& catalogue) { return catalogue.GetSubFolderID(parent, name.c_str()); });
  return id == vdstomgr::kNoFolder ? std::nullopt : std::optional(id);
}

bool HasPhotoNamed(Library& library, uint32_t folder, const std::string& name) {
  CStringArray guids;
  library.Call(
      [&](auto& catalogue) { return catalogue.GetPhotoGUID(folder, name.c_str(), guids); });
  return std::any_of(guids.begin(), guids.end(), [&](const CString& guid) {
    const auto photo = library.Photo(guid.Str());
    return photo && name == photo->GetFileName();
  });
}

/// Adding answers false when another process took the id meanwhile.
uint32_t CreateFolder(Library& library, uint32_t parent, const std::string& name) {
  RequireName(name);
  FOLDERINFO folder = NewFolder(library, parent, name);
  for (int tries = 0; tries < kTriesForAnId; ++tries) {
    folder.dwFolderID = NextFolderId(library);
    FOLDERINFO stored;
    library.Call([&](auto& catalogue) {
      return catalogue.AddFolderInfo(folder) && catalogue.GetFolderInfo(folder.dwFolderID, stored);
    });
    if (stored.dwParentID != parent || std::strcmp(stored.szFolderName, folder.szFolderName) != 0)
      continue;
    library.CallSearch([&](auto& copy) { copy.FolderAdded(folder); });
    return folder.dwFolderID;
  }
  throw ToolError(ExitCode::kCatalogue, "no free number for the folder " + Printable(name));
}

uint32_t EnsureFolder(Library& library, const std::string& full_path) {
  const uint32_t found = library.Call(
      [&](auto& catalogue) { return catalogue.GetFolderIDFromPath(full_path.c_str()); });
  if (found != vdstomgr::kNoFolder) return found;
  if (full_path.find('/') == std::string::npos)
    throw ToolError(ExitCode::kNotFound, "no root folder " + Printable(full_path));
  const uint32_t parent = EnsureFolder(library, ParentOf(full_path));
  return CreateFolder(library, parent, std::string(LastComponent(full_path)));
}

std::string RelocateFolder(Library& library, uint32_t folder, uint32_t parent,
                           const std::string& name) {
  const auto path_of = [&] {
    return library.Call([&](auto& catalogue) { return catalogue.GetServerPathName(folder); }).Str();
  };
  const std::string old_path = path_of();
  const bool is_taken = FindSubFolder(library, parent, name).value_or(folder) != folder;
  CString free_name = name.c_str();
  library.Call([&](auto& catalogue) {
    if (is_taken) free_name = catalogue.GetNewSubFolderName(name.c_str(), parent);
    return catalogue.MoveFolder(folder, parent) &&
           catalogue.RenameFolder(folder, free_name, catalogue.GetFolderDesc(folder));
  });
  FollowMove(library, old_path, path_of());
  library.CallSearch([](auto& copy) { copy.FoldersChanged(); });
  return free_name.Str();
}

}  // namespace vdsto
