#pragma once
#include <cstdint>
#include <string>

#include "tools/vdsto/library/library.h"

namespace vdsto {

/// What a user's words mean in the catalogue.
class CataloguePath {
 public:
  explicit CataloguePath(Library& library) : library_(library) {}

  /// The folder at `path`: names between '/', from the personal root down or beginning with a
  /// root's own name. An empty path is the personal root. Throws ToolError when there is none.
  uint32_t Folder(const std::string& path);
  /// The photo with this GUID, at this catalogue path, made from this file of the computer, or the
  /// only one of this file name. Throws ToolError when there is none, or when several have the
  /// name.
  PHOTOINFO Photo(const std::string& text);

  /// "sample/2003 정원" for a folder below the personal root, "개인 폴더" for the root itself.
  std::string NameOf(uint32_t folder);

 private:
  bool FindFolder(const std::string& path, uint32_t& folder);
  bool FindByGuid(const std::string& text, PHOTOINFO& photo);
  bool FindBySource(const std::string& text, PHOTOINFO& photo);
  bool FindByPath(const std::string& text, PHOTOINFO& photo);
  bool FindByName(const std::string& text, PHOTOINFO& photo);
  vdstomgr::PhotoArray PhotosNamed(const std::string& name);

  Library& library_;
};

}  // namespace vdsto
