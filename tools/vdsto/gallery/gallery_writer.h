#pragma once
#include <cstddef>
#include <string>

#include "tools/vdsto/gallery/gallery.h"
#include "tools/vdsto/gallery/gallery_output.h"
#include "tools/vdsto/library/library.h"

namespace vdsto {

/// Writes the page, its data and the thumbnails, which it takes from the library's image store and
/// turns as the user turned the photo. Answers how many there were; photos whose thumbnail is not
/// in the store, or not what was stored, are shown without one, the latter with a word on standard
/// error. Throws ToolError.
size_t WriteGallery(Gallery& gallery, const std::string& title, const Library& library,
                    GalleryOutput& output);

}  // namespace vdsto
