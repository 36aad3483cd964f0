#pragma once
#include <set>
#include <string>

#include "tools/vdsto/library/library.h"
#include "tools/vdsto/picture/picture_metadata.h"

namespace vdsto {

/// The catalogue's lists of camera models and lenses, filled with what an import meets. A name is
/// written once, however many photos have it.
class CamerasMet {
 public:
  explicit CamerasMet(Library& library) : library_(library) {}

  void Remember(const ExifFacts& exif);
  /// Writes the new names. Throws ToolError.
  void Write();

 private:
  struct Names {
    std::set<std::string> known;
    std::set<std::string> fresh;

    void Remember(const std::string& full_name);
  };

  template <class Add>
  void Write(Names& names, Add add);

  Library& library_;
  Names models_;
  Names lenses_;
};

}  // namespace vdsto
