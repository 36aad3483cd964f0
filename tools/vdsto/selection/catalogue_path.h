#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "tools/vdsto/import/folder_mirror.h"
#include "tools/vdsto/library/library.h"

namespace vdsto {

/// What a user's words mean in the catalogue, and what its folders and photos are called there.
/// Folders and photos made while it lives may not be found.
class CataloguePath {
 public:
  explicit CataloguePath(Library& library) : library_(library) {}

  /// The folder at this catalogue path: names between '/', from the personal root down or beginning
  /// with a root's own name; else the one that mirrors this folder of the computer. "/" is the
  /// personal root, and so are no words at all. Throws ToolError when there is none.
  uint32_t Folder(const std::string& text);
  std::optional<uint32_t> FindFolder(const std::string& text);

  /// The photo that FindPhoto or FindNamed finds. Throws ToolError when there is none.
  PHOTOINFO Photo(const std::string& text);
  /// The photo with this GUID, made from this file of the computer, or at this catalogue path.
  /// Throws ToolError when several are there.
  std::optional<PHOTOINFO> FindPhoto(const std::string& text);
  /// The only photo of this file name. Throws ToolError when there are several.
  std::optional<PHOTOINFO> FindNamed(const std::string& name);
  /// The photo made from the file `name` in the folder at `folder`, an absolute path without links.
  /// The file need not be there.
  std::optional<PHOTOINFO> FindFile(const std::string& folder, const std::string& name);

  /// "sample/2003 정원" for a folder below the personal root, "개인 폴더" for the root itself.
  std::string NameOf(uint32_t folder);
  std::string NameOf(const PHOTOINFO& photo);

 private:
  std::optional<uint32_t> FindFolderAt(const std::string& path);
  std::optional<PHOTOINFO> FindByFile(const std::string& text);
  std::optional<PHOTOINFO> FindByPath(const std::string& path);
  void AddNamed(uint32_t folder, const std::string& name, vdstomgr::PhotoArray& photos);
  vdstomgr::PhotoArray PhotosNamed(const std::string& name);
  FolderMirror& Mirror();

  Library& library_;
  std::optional<FolderMirror> mirror_;  // made when it is needed
  std::optional<vdstomgr::FolderArray> folders_;
};

}  // namespace vdsto
