#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/vdsto/library/folder_rows.h"
#include "tools/vdsto/library/library.h"

namespace vdsto {

/// The photos of files that are not in the folder that mirrors theirs: users move photos, and put
/// them into the trash. Reads all photos when it is first asked and remembers them as they were
/// then. One thread calls it.
class MovedPhotos {
 public:
  struct Found {
    KnownFile file;
    bool is_in_trash;
  };

  explicit MovedPhotos(Library& library) : library_(library) {}

  /// The photo of the file at `path`, wherever it is. Those without a location are not found.
  std::optional<Found> Find(const std::string& path);

 private:
  using Guid = std::array<char, 37>;

  void ReadAll();

  Library& library_;
  bool is_read_ = false;
  std::vector<std::pair<uint64_t, Guid>> photos_;  // by the hash of their location
};

}  // namespace vdsto
