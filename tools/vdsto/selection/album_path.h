#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "tools/vdsto/library/library.h"

namespace vdsto {

/// What a user's words mean among rooms and albums: "room/album/album below it", where the name of
/// the gallery (room 0) may be left out. Names are told apart by case as the catalogue does.
class AlbumPath {
 public:
  explicit AlbumPath(Library& library) : library_(library) {}

  /// Throws ToolError when there is no such room, or no such album.
  ROOMINFO Room(const std::string& name);
  ALBUMINDEX Album(const std::string& path);
  /// The same, where a room alone is right too: its album is 0.
  ALBUMINDEX RoomOrAlbum(const std::string& path);

  /// False, and `found` as it was, when there is none.
  bool Find(const std::string& path, ALBUMINDEX& found);
  std::string NameOf(ALBUMINDEX album);
  /// The name of room 0, also when it is not there yet.
  std::string Gallery();

 private:
  bool Descend(ALBUMINDEX start, std::string_view names, ALBUMINDEX& found);

  Library& library_;
};

}  // namespace vdsto
