#pragma once
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "tools/vdsto/import/source_walk.h"

namespace vdsto {

/// Is this the name of an XMP file?
bool IsSidecar(const std::string& path);

/// The XMP files of one folder, found by the pictures that they stand beside. Borrows the files.
class Sidecars {
 public:
  explicit Sidecars(const std::vector<SourceEntry>& files);

  /// "a.jpg.xmp" or else "a.xmp", which is the raw file's where a camera wrote one beside "a.jpg".
  /// Null when there is none.
  const SourceEntry* Of(const std::string& path) const;

 private:
  std::unordered_map<std::string, const SourceEntry*> by_stem_;  // of the whole path
  std::unordered_set<std::string> raw_stems_;
};

}  // namespace vdsto
