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

  /// Throws ToolError.
  explicit PhotoTexts(const Library& library) : file_(library) {}

  /// Empty when there is no such photo. Throws ToolError.
  Texts Of(const std::string& guid);

 private:
  CatalogueFile file_;
};

}  // namespace vdsto
