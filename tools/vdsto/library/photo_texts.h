#pragma once
#include <string>

#include "tools/vdsto/library/library.h"

namespace vdsto {

/// Titles and descriptions, which the records of photos do not carry: it reads them from the
/// catalogue's file itself, over a connection of its own.
class PhotoTexts {
 public:
  struct Texts {
    std::string title;
    std::string description;
  };

  /// Of a library that is open already with this password. Throws ToolError.
  PhotoTexts(const Library& library, const std::string& password);

  /// Empty when there is no such photo. Throws ToolError.
  Texts Of(const std::string& guid);

 private:
  CRkDaoDatabase database_;
};

}  // namespace vdsto
