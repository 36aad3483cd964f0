#include "tools/vdsto/commands/catalogue_path.h"

#include <filesystem>
#include <system_error>

#include "tools/vdsto/import/folder_mirror.h"
#include "tools/vdsto/library/photo_guid.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

/// The catalogue's names disregard case; a user's words do not.
void AddNamed(Library& library, uint32_t folder, const std::string& name,
              vdstomgr::PhotoArray& photos) {
  CStringArray guids;
  library.Call(
      [&](auto& catalogue) { return catalogue.GetPhotoGUID(folder, name.c_str(), guids); });
  for (const CString& guid : guids) {
    PHOTOINFO photo;
    const bool is_there =
        library.Call([&](auto& catalogue) { return catalogue.GetPhotoInfo(guid, photo); });
    if (is_there && name == photo.GetFileName()) photos.Add(photo);
  }
}

}  // namespace

uint32_t CataloguePath::Folder(const std::string& path) {
  uint32_t folder = vdstomgr::kPersonalRoot;
  if (!FindFolder(path, folder)) {
    throw ToolError(ExitCode::kNotFound, "no folder " + Printable(path) + " in the catalogue");
  }
  return folder;
}

bool CataloguePath::FindFolder(const std::string& path, uint32_t& folder) {
  const std::string wanted = Composed(path);
  if (wanted.find_first_not_of('/') == std::string::npos)
    return folder = vdstomgr::kPersonalRoot, true;
  const auto look_up = [&](const std::string& full_path) {
    folder = library_.Call(
        [&](auto& catalogue) { return catalogue.GetFolderIDFromPath(full_path.c_str()); });
    return folder != vdstomgr::kNoFolder;
  };
  const CString root = library_.Call(
      [](auto& catalogue) { return catalogue.GetFolderName(vdstomgr::kPersonalRoot); });
  return look_up(Joined(root, wanted)) || look_up(wanted);
}

PHOTOINFO CataloguePath::Photo(const std::string& text) {
  PHOTOINFO photo;
  if (FindByGuid(text, photo) || FindBySource(text, photo) || FindByPath(text, photo) ||
      FindByName(text, photo)) {
    return photo;
  }
  throw ToolError(ExitCode::kNotFound, "no photo " + Printable(text) + " in the catalogue");
}

bool CataloguePath::FindByGuid(const std::string& text, PHOTOINFO& photo) {
  return IsPhotoGuid(text) && library_.Call([&](auto& catalogue) {
    return catalogue.GetPhotoInfo(text.c_str(), photo);
  });
}

bool CataloguePath::FindBySource(const std::string& text, PHOTOINFO& photo) {
  std::error_code error;
  const auto folder =
      std::filesystem::canonical(std::filesystem::absolute(text, error).parent_path(), error);
  if (error) return false;
  FolderMirror mirror(library_);
  const auto id = mirror.Find(folder.string());
  if (!id) return false;
  const auto rows = mirror.Rows(*id);
  const KnownFile* known = rows->Find(Joined(folder.string(), LastComponent(text)));
  return known && library_.Call([&](auto& catalogue) {
    return catalogue.GetPhotoInfo(known->guid.c_str(), photo);
  });
}

bool CataloguePath::FindByPath(const std::string& text, PHOTOINFO& photo) {
  uint32_t folder = vdstomgr::kNoFolder;
  const std::string parent = text.find('/') == std::string::npos ? "" : ParentOf(text);
  if (!FindFolder(parent, folder)) return false;
  vdstomgr::PhotoArray photos;
  AddNamed(library_, folder, Composed(LastComponent(text)), photos);
  if (!photos.IsEmpty()) photo = photos[0];
  return !photos.IsEmpty();
}

bool CataloguePath::FindByName(const std::string& text, PHOTOINFO& photo) {
  if (text.empty() || text.find('/') != std::string::npos) return false;
  const vdstomgr::PhotoArray photos = PhotosNamed(Composed(text));
  if (photos.GetSize() == 1) photo = photos[0];
  if (photos.GetSize() <= 1) return photos.GetSize() == 1;
  std::string list;
  for (const PHOTOINFO& candidate : photos) {
    const std::string folder = NameOf(candidate.dwFolderID);
    list += (list.empty() ? "" : ", ") + Printable(Joined(folder, candidate.GetFileName()));
  }
  throw ToolError(ExitCode::kNotFound, std::to_string(photos.GetSize()) + " photos are named " +
                                           Printable(text) + ": " + list);
}

vdstomgr::PhotoArray CataloguePath::PhotosNamed(const std::string& name) {
  vdstomgr::FolderArray folders;
  library_.Call([&](auto& catalogue) { return catalogue.GetAllFolderList(folders); });
  vdstomgr::PhotoArray photos;
  AddNamed(library_, vdstomgr::kPersonalRoot, name, photos);
  for (const FOLDERINFO& folder : folders) {
    if (folder.dwFolderID != vdstomgr::kPersonalRoot)
      AddNamed(library_, folder.dwFolderID, name, photos);
  }
  return photos;
}

std::string CataloguePath::NameOf(uint32_t folder) {
  const CString path =
      library_.Call([&](auto& catalogue) { return catalogue.GetServerPathName(folder); });
  const CString root = library_.Call(
      [](auto& catalogue) { return catalogue.GetFolderName(vdstomgr::kPersonalRoot); });
  const std::string text = path.Str();
  return IsBelow(text, root.Str()) ? text.substr(root.Str().size() + 1) : text;
}

}  // namespace vdsto
