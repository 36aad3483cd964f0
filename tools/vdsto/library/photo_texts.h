#pragma once
#include <string>

#include "tools/vdsto/library/catalogue_file.h"

namespace vdsto {

/// Titles and descriptions, which the records of photos do not carry.
class PhotoTexts {
 public:
  struct Texts {
    std::string title;
    std::string description;
  };

  /// Of a library that is open already with this password. Throws ToolError.
  PhotoTexts(const Library& library, const std::string& password) : file_(library, password) {}

  /// Empty when there is no such photo. Throws ToolError.
  Texts Of(const std::string& guid);

 private:
  CatalogueFile file_;
};

}  // namespace vdsto
