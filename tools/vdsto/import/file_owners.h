#pragma once
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "tools/vdsto/import/import_places.h"
#include "tools/vdsto/import/known_photos.h"
#include "tools/vdsto/import/photo_writer.h"
#include "tools/vdsto/library/library.h"

namespace vdsto {

/// Whose file is a file that is new, or whose contents are? A photo stays with its path as long as
/// a file is there; a file that was renamed, moved or swapped is known by its contents. The
/// writer's thread calls it.
class FileOwners {
 public:
  /// A file that waits for the end of the walk: the photo that it may belong to has another file at
  /// its path now.
  struct Waiting {
    ImportJob job;
    PictureFacts picture;  ///< without its thumbnail
    std::optional<KnownPhotos::Index> own;
    std::optional<KnownPhotos::Index> wanted;
  };
  enum class Fate {
    kAsKnown,  ///< of the photo at its path, or new
    kMoved,    ///< of the photo that is named
    kSame,     ///< the file of a photo under another path: of the photo that is named, unchanged
    kWaits,    ///< told by Resolve
  };
  struct Decision {
    Fate fate;
    PhotoFacts photo;  ///< its facts as they were
  };

  FileOwners(Library& library, KnownPhotos& known, const ImportPlaces& places)
      : library_(library), known_(known), places_(places) {}

  Decision Decide(const ImportJob& job, const PictureFacts& picture);
  /// After the walk: the waiting files, and for each the photo that it has turned out to be of.
  std::vector<std::pair<Waiting, std::optional<PhotoFacts>>> Resolve();

 private:
  enum class Place { kHolds, kIsSame, kIsGone, kHasOther, kMayBeSpeltSo };

  PhotoFacts FactsOf(KnownPhotos::Index index);
  Place Look(const PhotoFacts& photo, KnownPhotos::Index index, const std::string& path) const;
  void DropUnfounded();
  bool IsFounded(const Waiting& file);
  Waiting* TakerOf(KnownPhotos::Index photo);
  Waiting* FileAt(KnownPhotos::Index photo);

  Library& library_;
  KnownPhotos& known_;
  const ImportPlaces& places_;
  std::vector<Waiting> waiting_;
  std::unordered_map<KnownPhotos::Index, size_t> takers_;    // of waiting_, by `wanted`
  std::unordered_map<KnownPhotos::Index, size_t> files_at_;  // of waiting_, by `own`
};

}  // namespace vdsto
