#pragma once
#include <optional>
#include <string>

#include "tools/vdsto/library/finished_file.h"
#include "tools/vdsto/library/library.h"

/// Which photo a file of this computer is the original of, so that nothing is written over it.
namespace vdsto {

/// The photo whose original this file is, under whatever name and link. Asks for the original of
/// every photo of the catalogue.
std::optional<PHOTOINFO> PhotoOfFile(Library& library, FileIdentity file);

/// The photo whose original lies, or lay, at `name` in `folder`, an absolute path without links.
/// Case does not count, because it may not count on the disk that the original lay on.
std::optional<PHOTOINFO> PhotoOfPlace(Library& library, const std::string& folder,
                                      const std::string& name);

}  // namespace vdsto
