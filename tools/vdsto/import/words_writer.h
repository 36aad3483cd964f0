#pragma once
#include <map>
#include <string>
#include <vector>

#include "tools/vdsto/library/library.h"
#include "tools/vdsto/picture/picture_metadata.h"

namespace vdsto {

/// Brings what people wrote into pictures into the catalogue: titles, descriptions and, for each
/// keyword, a tag. What was changed in the catalogue is left alone: only a text that is still the
/// last import's is replaced, and only a keyword that is new in the picture becomes a tag. Nothing
/// that has gone from a picture is taken away.
class WordsWriter {
 public:
  explicit WordsWriter(Library& library) : library_(library) {}

  /// Of a photo whose row is new.
  void CollectNew(const std::string& guid, const PictureWords& words);
  /// Of a picture that is read again; sets the rating in the row at once.
  void CollectChanges(PHOTOINFO& photo, const PictureWords& words);
  /// Of a row that was not written.
  void Forget(const std::string& guid);
  /// Writes what is collected, when the rows are there. Throws ToolError.
  void Write();

 private:
  struct Change {
    std::string guid;
    PictureWords words;
  };

  PictureWords Before(const PHOTOINFO& photo, const PictureWords& words);
  void SetText(const Change& change);
  uint32_t TagId(const std::string& name);

  Library& library_;
  std::vector<Change> changes_;
  std::map<std::string, uint32_t> tag_ids_;
};

}  // namespace vdsto
