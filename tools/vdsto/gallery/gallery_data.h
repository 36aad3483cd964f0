#pragma once
#include <cstddef>
#include <string>

#include "tools/vdsto/gallery/gallery.h"

/// A gallery as the page reads it: scripts that call it with their data, because a page that lies
/// in a folder may not read other files. The page's script says what stands where in the lists.
namespace vdsto {

/// So many photos are one piece of data, and one folder of thumbnails.
inline constexpr size_t kPhotosPerChunk = 500;

/// Folders, tags, months and which photos belong to them.
std::string IndexScript(const Gallery& gallery, const std::string& title);
/// What is shown of the photos of one piece.
std::string ChunkScript(const Gallery& gallery, size_t chunk);
/// Where a photo's thumbnail is.
std::string ThumbnailPath(size_t photo);

/// `text` to stand in HTML, also between quotes.
std::string HtmlText(const std::string& text);

}  // namespace vdsto
