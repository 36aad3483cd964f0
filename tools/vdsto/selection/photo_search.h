#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/selection/photo_filter.h"

namespace vdsto {

/// One search of a library for photos and folders.
class PhotoSearch {
 public:
  using PhotoSource = std::function<int(CRkSearchDBManager&, vdstomgr::PhotoArray&, int max)>;
  static constexpr int kMost = 1'000'000'000;

  /// Finds at most `limit` photos and folders each. Throws ToolError as PhotoFilter does.
  PhotoSearch(Library& library, CataloguePath& paths, const FilterWords& filter, int limit);

  /// Those whose name has all of the words in it, or, when they are consonants only, syllables that
  /// begin so. Folders are found only by a filter that can be said of them.
  void AddPhotosNamed(const std::vector<std::string>& words);
  void AddFoldersNamed(const std::vector<std::string>& words);
  /// Those that a search of the copy answers.
  void AddPhotos(const PhotoSource& source);

  const std::vector<uint32_t>& Folders() const { return folders_; }
  const vdstomgr::PhotoArray& Photos() const { return photos_; }

 private:
  void TakePassing(const vdstomgr::PhotoArray& found);

  Library& library_;
  const int limit_;
  const PhotoFilter filter_;
  const bool filters_photos_only_;
  std::vector<uint32_t> folders_;
  vdstomgr::PhotoArray photos_;
};

}  // namespace vdsto
