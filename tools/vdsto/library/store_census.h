#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "tools/vdsto/library/library.h"

namespace vdsto {

/// The image store beside the rows of the catalogue.
struct StoreCensus {
  vdstomgr::StorageReport report;
  std::vector<std::string> keys;           ///< of the images, in order
  uint64_t orphans = 0;                    ///< images that no photo names
  std::vector<std::string> without_image;  ///< GUIDs of photos whose image is not in the store
};

/// Verifies a library's store and compares it with the catalogue; changes nothing. What an import
/// adds meanwhile is not counted as wrong, as far as it has come when this ends.
StoreCensus CompareStore(Library& library);

/// The photo whose image has this key; nothing when there is none.
std::optional<PHOTOINFO> PhotoOfImage(Library& library, const std::string& key);

}  // namespace vdsto
