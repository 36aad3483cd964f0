#include "tools/vdsto/selection/album_path.h"

#include "tools/vdsto/selection/unknown_name.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr uint32_t kGallery = 0;
constexpr const char* kGalleryName = "갤러리";

}  // namespace

ROOMINFO AlbumPath::Room(const std::string& name) {
  vdstomgr::RoomArray rooms;
  library_.Call([&](auto& catalogue) { return catalogue.GetAllRoomInfo(rooms); });
  for (const ROOMINFO& room : rooms) {
    if (Composed(name) == room.szRoomName) return room;
  }
  throw NotInCatalogue("room", {name}, "vdsto room ls shows all rooms");
}

ALBUMINDEX AlbumPath::Album(const std::string& path) {
  const ALBUMINDEX album = RoomOrAlbum(path);
  if (album.dwAlbumID != 0) return album;
  throw ToolError(ExitCode::kUsage,
                  Printable(path) + " is a room: name an album in it (vdsto album ls shows them)");
}

ALBUMINDEX AlbumPath::RoomOrAlbum(const std::string& path) {
  ALBUMINDEX found;
  if (Find(path, found)) return found;
  throw NotInCatalogue("album", {path}, "vdsto album ls shows all albums");
}

bool AlbumPath::Find(const std::string& path, ALBUMINDEX& found) {
  const std::string wanted = Composed(path);
  vdstomgr::RoomArray rooms;
  library_.Call([&](auto& catalogue) { return catalogue.GetAllRoomInfo(rooms); });
  const size_t slash = wanted.find('/');
  const std::string below = slash == std::string::npos ? "" : wanted.substr(slash + 1);
  for (const ROOMINFO& room : rooms) {
    if (wanted.substr(0, slash) == room.szRoomName && Descend({room.dwRoomID, 0}, below, found))
      return true;
  }
  return Descend({kGallery, 0}, wanted, found) && found.dwAlbumID != 0;
}

bool AlbumPath::Descend(ALBUMINDEX start, std::string_view names, ALBUMINDEX& found) {
  if (names.empty()) return found = start, true;
  const size_t slash = names.find('/');
  const std::string_view below = slash == names.npos ? "" : names.substr(slash + 1);
  vdstomgr::AlbumArray children;
  library_.Call([&](auto& catalogue) {
    return catalogue.GetSubAlbumList(start.dwRoomID, start.dwAlbumID, children);
  });
  for (const ALBUMINFO& child : children) {
    if (names.substr(0, slash) == child.szAlbumName)
      return Descend({child.dwRoomID, child.dwAlbumID}, below, found);
  }
  return false;
}

std::string AlbumPath::NameOf(ALBUMINDEX album) {
  return library_
      .Call(
          [&](auto& catalogue) { return catalogue.GetAlbumPath(album.dwRoomID, album.dwAlbumID); })
      .Str();
}

std::string AlbumPath::Gallery() {
  const CString name =
      library_.Call([](auto& catalogue) { return catalogue.GetRoomName(kGallery); });
  return name.IsEmpty() ? kGalleryName : name.Str();
}

}  // namespace vdsto
