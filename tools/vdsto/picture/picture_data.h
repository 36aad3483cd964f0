#pragma once
#include <string>

#include "tools/vdsto/picture/source_file.h"

namespace vdsto {

/// Where the media libraries read a picture from: memory, or the file at `path` when `bytes` is
/// empty. Borrows both.
struct PictureData {
  Bytes bytes;
  std::string path;

  bool InMemory() const { return !bytes.empty(); }
};

}  // namespace vdsto
