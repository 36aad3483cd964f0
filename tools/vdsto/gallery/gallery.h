#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/vdsto/library/library.h"

namespace vdsto {

struct GalleryPhoto {
  GA_ITEMINFO item;
  std::string image_key;  ///< of its thumbnail; empty when it has none
  std::string title;
  std::string description;
  std::string camera;
  size_t folder = 0;         ///< its place in Gallery::folders
  std::vector<size_t> tags;  ///< their places in Gallery::tags
};

struct GalleryFolder {
  std::string name;
  int parent = -1;  ///< its place in Gallery::folders, before this one; -1 for a root
};

/// What a gallery shows, in the order in which it does.
struct Gallery {
  std::vector<GalleryPhoto> photos;    ///< by the time they were shot, those without one last
  std::vector<GalleryFolder> folders;  ///< of the photos, and those above them
  std::vector<std::string> tags;       ///< of the photos
};

/// Reads what shows these photos; those that are gone meanwhile are left out. Throws ToolError.
Gallery ReadGallery(Library& library, const CStringArray& guids);

/// Leaves the photos that carry all of the tags. Throws ToolError.
CStringArray WithAllTags(Library& library, const CStringArray& guids,
                         const std::vector<TAGINFO>& tags);

}  // namespace vdsto
