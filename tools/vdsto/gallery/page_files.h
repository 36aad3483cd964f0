#pragma once
#include <span>
#include <string_view>

namespace vdsto {

/// A file of a gallery's page, as it was when the program was built.
struct EmbeddedFile {
  std::string_view name;  ///< its place below the gallery's folder
  std::string_view contents;
};

std::span<const EmbeddedFile> PageFiles();

}  // namespace vdsto
