#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tools/vdsto/import/import_places.h"
#include "tools/vdsto/library/folder_rows.h"
#include "tools/vdsto/library/library.h"
#include "tools/vdsto/picture/picture_probe.h"

namespace vdsto {

/// All photos of the catalogue as an import meets them, wherever they are in it: found by the path
/// of their file and by its contents. They are read once; what an import does to them meanwhile is
/// noted by marks.
class KnownPhotos {
 public:
  using Index = uint32_t;

  struct Photo {
    std::array<char, 37> guid{};
    uint32_t folder = 0;
    uint64_t path_hash = 0;
    uint64_t content_hash = 0;  ///< 0: not known
    bool has_facts = false;
    bool is_gone = false;      ///< was gone when an import last looked
    bool is_imported = false;  ///< lies below a folder that is imported now
    bool is_seen = false;      ///< the walker's: it has met the file
    bool is_settled = false;   ///< the writer's: the photo has got a file
  };

  KnownPhotos(Library& library, ImportPlaces& places);

  const Photo& operator[](Index index) const { return photos_[index]; }
  std::string GuidOf(Index index) const { return photos_[index].guid.data(); }
  Index Count() const { return static_cast<Index>(photos_.size()); }
  std::optional<Index> Find(const std::string& guid) const;
  /// The photo of the file at `path`.
  std::optional<Index> FindPath(const std::string& path) const;
  /// The photos of files with the same contents.
  std::vector<Index> FindContents(const PictureFacts& picture) const;
  /// Of the XMP file that the last import read with the photo's; all 0 without one.
  FileStamp SidecarOf(Index index) const;
  /// Facts of photos that the catalogue does not have.
  const std::vector<std::string>& Orphans() const { return orphans_; }

  /// The marks. One thread each.
  void MarkSeen(Index index) { photos_[index].is_seen = true; }
  void MarkSettled(Index index) { photos_[index].is_settled = true; }

 private:
  using HashTable = std::vector<std::pair<uint64_t, Index>>;

  void ReadGuids(Library& library);
  void ReadFacts(FactsDatabase& facts, ImportPlaces& places);
  void ReadRowsWithoutFacts(Library& library, const ImportPlaces& places);
  void MakeTables();

  std::vector<Photo> photos_;  // by GUID
  std::unordered_map<Index, FileStamp> sidecars_;
  HashTable by_path_;
  HashTable by_contents_;
  std::vector<std::string> orphans_;
};

/// What the row of a photo tells of its file, for one without facts.
PhotoFacts FactsOfRow(const PHOTOINFO& photo);

}  // namespace vdsto
