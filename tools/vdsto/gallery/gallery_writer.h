#pragma once
#include <cstddef>
#include <string>

#include "tools/vdsto/gallery/gallery.h"
#include "tools/vdsto/gallery/gallery_output.h"

namespace vdsto {

/// Writes the page, its data and the thumbnails, which it takes from the library's image store: as
/// they lie there, or turned as the user turned the photo. Answers how many there were; photos
/// whose thumbnail is not in the store are shown without one. Throws ToolError.
size_t WriteGallery(Gallery& gallery, const std::string& title, const std::string& library_folder,
                    GalleryOutput& output);

}  // namespace vdsto
