#include "tools/vdsto/selection/catalogue_path.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

#include "tools/vdsto/library/photo_guid.h"
#include "tools/vdsto/selection/unknown_name.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

namespace fs = std::filesystem;

std::string PersonalRootName() {
  return vdstomgr::RootFolderName(vdstomgr::kPersonalRoot).Str();
}

/// The one photo, or none. `describe` says how each of several is asked for instead.
template <class Describe>
std::optional<PHOTOINFO> OnlyOne(const vdstomgr::PhotoArray& photos, const std::string& name,
                                 Describe describe) {
  constexpr size_t kMostNamed = 5;
  if (photos.IsEmpty()) return std::nullopt;
  if (photos.GetSize() == 1) return photos[0];
  std::vector<std::string> names;
  for (const PHOTOINFO& photo : photos) names.push_back(describe(photo));
  std::sort(names.begin(), names.end());
  throw ToolError(ExitCode::kNotFound, std::to_string(photos.GetSize()) + " photos are named " +
                                           name + ": " + Listed(names, kMostNamed));
}

}  // namespace

uint32_t CataloguePath::Folder(const std::string& text) {
  if (const auto folder = FindFolder(text)) return *folder;
  throw NotInCatalogue("folder", {text}, "vdsto tree shows all folders");
}

std::optional<uint32_t> CataloguePath::FindFolder(const std::string& text) {
  if (const auto folder = FindFolderAt(text)) return folder;
  std::error_code error;
  const fs::path source = fs::canonical(text, error);
  return error || !fs::is_directory(source, error) ? std::nullopt : Mirror().Find(source.string());
}

std::optional<uint32_t> CataloguePath::FindFolderAt(const std::string& path) {
  const std::string wanted = Composed(path);
  if (wanted.find_first_not_of('/') == std::string::npos) return vdstomgr::kPersonalRoot;
  for (const std::string& full_path : {Joined(PersonalRootName(), wanted), wanted}) {
    const uint32_t folder = library_.Call(
        [&](auto& catalogue) { return catalogue.GetFolderIDFromPath(full_path.c_str()); });
    if (folder != vdstomgr::kNoFolder) return folder;
  }
  return std::nullopt;
}

PHOTOINFO CataloguePath::Photo(const std::string& text) {
  if (const auto photo = FindPhoto(text)) return *photo;
  if (const auto photo = FindNamed(text)) return *photo;
  throw NotInCatalogue("photo", {text}, "vdsto ls shows a folder's photos");
}

std::optional<PHOTOINFO> CataloguePath::FindPhoto(const std::string& text) {
  if (IsPhotoGuid(text)) {
    if (const auto photo = library_.Photo(text)) return photo;
  }
  if (LastComponent(text).empty()) return std::nullopt;
  if (const auto photo = FindByFile(text)) return photo;
  return FindByPath(text);
}

std::optional<PHOTOINFO> CataloguePath::FindByFile(const std::string& text) {
  std::error_code error;
  const fs::path folder = fs::canonical(fs::absolute(text, error).parent_path(), error);
  if (error) return std::nullopt;
  return FindFile(folder.string(), std::string(LastComponent(text)));
}

/// Photos that the user has moved to other folders still know their file.
std::optional<PHOTOINFO> CataloguePath::FindFile(const std::string& folder,
                                                 const std::string& name) {
  const std::string path = Joined(folder, name);
  if (const auto id = Mirror().Find(folder)) {
    const auto rows = Mirror().Rows(*id);
    if (const KnownFile* known = rows->Find(path)) return library_.Photo(known->guid);
  }
  const std::string location = LocationOf(path);
  for (const PHOTOINFO& photo : PhotosNamed(Composed(name))) {
    if (location != photo.GetOPURL()) continue;
    if (!location.empty()) return photo;
    const auto facts = library_.FactsOfPhotos().Of(photo.szGUID);
    if (facts && facts->path == path) return photo;
  }
  return std::nullopt;
}

std::optional<PHOTOINFO> CataloguePath::FindByPath(const std::string& path) {
  const bool has_parent = path.find('/') != std::string::npos;
  const auto folder = FindFolderAt(has_parent ? ParentOf(path) : "");
  if (!folder) return std::nullopt;
  vdstomgr::PhotoArray photos;
  AddNamed(*folder, Composed(LastComponent(path)), photos);
  return OnlyOne(photos, path, [](const PHOTOINFO& photo) { return photo.szGUID; });
}

std::optional<PHOTOINFO> CataloguePath::FindNamed(const std::string& name) {
  if (name.find('/') != std::string::npos) return std::nullopt;
  return OnlyOne(PhotosNamed(Composed(name)), name,
                 [&](const PHOTOINFO& photo) { return NameOf(photo); });
}

/// The catalogue's names disregard case; a user's words do not.
void CataloguePath::AddNamed(uint32_t folder, const std::string& name,
                             vdstomgr::PhotoArray& photos) {
  CStringArray guids;
  library_.Call(
      [&](auto& catalogue) { return catalogue.GetPhotoGUID(folder, name.c_str(), guids); });
  for (const CString& guid : guids) {
    const auto photo = library_.Photo(guid.Str());
    if (photo && name == photo->GetFileName()) photos.Add(*photo);
  }
}

vdstomgr::PhotoArray CataloguePath::PhotosNamed(const std::string& name) {
  if (!folders_) folders_ = library_.AllFolders();
  vdstomgr::PhotoArray photos;
  AddNamed(vdstomgr::kPersonalRoot, name, photos);
  for (const FOLDERINFO& folder : *folders_) {
    if (folder.dwFolderID != vdstomgr::kPersonalRoot) AddNamed(folder.dwFolderID, name, photos);
  }
  return photos;
}

std::string CataloguePath::NameOf(uint32_t folder) {
  const CString path =
      library_.Call([&](auto& catalogue) { return catalogue.GetServerPathName(folder); });
  const std::string text = path.Str();
  const std::string root = PersonalRootName();
  return IsBelow(text, root) ? text.substr(root.size() + 1) : text;
}

std::string CataloguePath::NameOf(const PHOTOINFO& photo) {
  return Joined(NameOf(photo.dwFolderID), photo.GetFileName());
}

FolderMirror& CataloguePath::Mirror() {
  if (!mirror_) mirror_.emplace(library_);
  return *mirror_;
}

}  // namespace vdsto
