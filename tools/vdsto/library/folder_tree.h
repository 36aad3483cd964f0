#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tools/vdsto/library/library.h"

namespace vdsto {

struct TreeFolder {
  uint32_t id = 0;
  std::string name;
  int photos = 0;
  std::vector<TreeFolder> folders;  ///< in the catalogue's order of names

  /// Photos here and below.
  int AllPhotos() const;
};

/// The personal, public and guest roots with everything below. The trash folders are left out.
std::vector<TreeFolder> ReadFolderTree(Library& library);

}  // namespace vdsto
