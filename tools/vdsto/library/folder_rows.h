#pragma once
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "tools/vdsto/picture/source_file.h"
#include "vdstomgr/vdstomgr.h"

namespace vdsto {

/// What the catalogue knows about one file, as far as an import compares it.
struct KnownFile {
  std::string guid;
  FileStamp stamp;
  std::string image_key;  ///< of its thumbnail; empty when it has none in the store
  /// Its row is of a time before there were thumbnails.
  bool shows_original = false;
};

/// The photos of one catalogue folder, found by the file they came from.
class FolderRows {
 public:
  explicit FolderRows(const vdstomgr::PhotoArray& photos);

  /// The photo of the file at `path`, by its location, byte for byte.
  const KnownFile* Find(const std::string& path) const;
  /// A photo without a location, of a path too long to be stored, that has the name of the file.
  const KnownFile* FindNamed(const std::string& path) const;
  /// The folders that the photos' originals lie in, one entry per photo.
  const std::vector<std::string>& SourceFolders() const { return source_folders_; }

 private:
  std::unordered_map<std::string, KnownFile> by_location_;
  std::unordered_map<std::string, KnownFile> by_name_;  // those without a location
  std::vector<std::string> source_folders_;
};

KnownFile KnownFileOf(const PHOTOINFO& photo);

/// A photo's file size and last-write time.
FileStamp StampOf(const PHOTOINFO& photo);

}  // namespace vdsto
