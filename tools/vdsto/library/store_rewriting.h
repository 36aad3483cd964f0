#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/vdsto/library/image_seal.h"
#include "tools/vdsto/library/import_lock.h"

namespace vdsto {

struct RewriteSummary {
  uint64_t images = 0;   ///< that are in the store now
  uint64_t dropped = 0;  ///< that the change had no use for
};

/// What is to be stored in place of an image; nothing: the image is dropped.
using ImageChange = std::function<std::optional<std::vector<uint8_t>>(const std::string& store_key,
                                                                      ImageBytes stored)>;

/// Writes the store of a library anew and puts it in the place of the old one, which is deleted: no
/// byte of what was there before stays. A store with faults is repaired before. When the process is
/// killed the store is the old one or the new one (see vdstomgr::FinishCompaction). Throws
/// ToolError, and the store is the old one then.
RewriteSummary RewriteImages(const std::string& library_folder, const ImportLock& lock,
                             const ImageChange& change);

/// Those of the keys whose images are not what was stored, or are encrypted while `seal` is null;
/// also while an import writes to the store.
std::vector<std::string> ForgedImages(const std::string& library_folder, const ImageSeal* seal,
                                      const std::vector<std::string>& keys);

/// Removes all such images, so that the next import makes them again; answers their keys. Needs the
/// store for itself. Throws ToolError.
std::vector<std::string> DropForgedImages(const std::string& library_folder, const ImageSeal* seal,
                                          const ImportLock& lock);

}  // namespace vdsto
