#include <algorithm>
#include <cstring>
#include <iostream>

#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/photo_text.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/folder_changes.h"
#include "tools/vdsto/library/trash_bin.h"
#include "tools/vdsto/selection/album_path.h"
#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr size_t kMostAlbumCharacters = 64;
constexpr const char* kNotes =
    R"(An ALBUM is a path, "room/album/album in it"; without a room's name it is in the gallery. A photo
may be in many albums, and stays in the catalogue when it is taken out of one.)";

vdstomgr::AlbumArray AlbumsIn(Library& library, ALBUMINDEX album, bool recursive) {
  vdstomgr::AlbumArray albums;
  library.Call([&](auto& catalogue) {
    catalogue.GetSubAlbumInfo(album.dwRoomID, album.dwAlbumID, albums, recursive);
    return true;
  });
  return albums;
}

/// Those in the trash are left out.
std::vector<PHOTOINFO> PhotosIn(Library& library, ALBUMINDEX album) {
  CStringArray guids;
  library.Call([&](auto& catalogue) {
    return catalogue.GetPhotosInAlbum(album.dwRoomID, album.dwAlbumID, guids, false);
  });
  std::vector<PHOTOINFO> photos;
  for (const CString& guid : guids) {
    const auto photo = library.Photo(guid.Str());
    if (photo && !IsTrashFolder(photo->dwFolderID)) photos.push_back(*photo);
  }
  return photos;
}

struct AlbumList {
  std::string path;

  void Declare(Command& command) {
    command.OptionalWord("ALBUM", path, "The album or room whose photos to list");
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    return invocation.Write(path.empty() ? ListAll(library) : ListOne(library));
  }

  static Answer ListAll(Library& library) {
    AlbumPath paths(library);
    vdstomgr::RoomArray rooms;
    library.Call([&](auto& catalogue) { return catalogue.GetAllRoomInfo(rooms); });
    Table rows({"id", "photos", "path"});
    for (const ROOMINFO& room : rooms) {
      for (const ALBUMINFO& album : AlbumsIn(library, {room.dwRoomID, 0}, true)) {
        const ALBUMINDEX index{album.dwRoomID, album.dwAlbumID};
        rows.Add({album.dwAlbumID, PhotosIn(library, index).size(), paths.NameOf(index)});
      }
    }
    return rows;
  }

  Answer ListOne(Library& library) const {
    AlbumPath paths(library);
    const ALBUMINDEX album = paths.RoomOrAlbum(path);
    CataloguePath folders(library);
    Json albums = Json::array();
    Json photos = Json::array();
    Table rows = PhotoTable();
    for (const ALBUMINFO& child : AlbumsIn(library, album, false)) {
      albums.push_back({{"id", child.dwAlbumID}, {"name", child.szAlbumName}});
      rows.Add({"", "", "", std::string(child.szAlbumName) + "/"});
    }
    for (const PHOTOINFO& photo : PhotosIn(library, album)) {
      photos.push_back(PhotoAsJson(photo, folders.NameOf(photo.dwFolderID)));
      AddPhoto(photo, folders.NameOf(photo), rows);
    }
    return {{{"path", paths.NameOf(album)},
             {"room", album.dwRoomID},
             {"id", album.dwAlbumID},
             {"albums", std::move(albums)},
             {"photos", std::move(photos)}},
            rows.Text()};
  }
};

[[noreturn]] void RefuseTaken(const std::string& path) {
  throw ToolError(ExitCode::kRefused, "there is an album " + Printable(path) +
                                          " already: vdsto album ls shows all albums");
}

struct AlbumCreate {
  WordList paths;
  bool parents = false;
  ChangeOptions change;

  void Declare(Command& command) {
    command.NewNames(paths)
        .Flag("-p,--parents", parents, "Create the albums above too; one that is there is no error")
        .Change(change);
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    ChangePlan plan{"album", "created"};
    for (const Name& name : ReadNames(paths, std::cin)) {
      const std::string path = Composed(name.text);
      ALBUMINDEX found;
      if (AlbumPath(library).Find(path, found)) {
        if (!parents) RefuseTaken(path);
        ++plan.unchanged;
        continue;
      }
      Check(library, path, plan.changed);
      plan.AddNew(path);
    }
    return CarryOut(invocation, plan, change, [&] {
      for (const std::string& path : plan.changed) Ensure(library, path);
    });
  }

 private:
  static bool IsListed(const std::vector<std::string>& list, const std::string& text) {
    return std::find(list.begin(), list.end(), text) != list.end();
  }

  static std::string Last(const std::string& path) { return path.substr(path.rfind('/') + 1); }
  /// What is without a room is in the gallery.
  static std::string Above(Library& library, const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? AlbumPath(library).Gallery() : path.substr(0, slash);
  }

  void Check(Library& library, const std::string& path,
             const std::vector<std::string>& coming) const {
    RequireName(Last(path), kMostAlbumCharacters);
    const std::string above = Above(library, path);
    ALBUMINDEX found;
    if (AlbumPath(library).Find(above, found)) {
      const bool is_taken = library.Call([&](auto& catalogue) {
        return catalogue.IsAlbum(found.dwRoomID, found.dwAlbumID, Last(path).c_str());
      });
      if (is_taken) RefuseTaken(path);
    } else if (above != AlbumPath(library).Gallery() && !IsListed(coming, above)) {
      if (!parents) AlbumPath(library).RoomOrAlbum(above);
      Check(library, above, coming);
    }
  }

  static ALBUMINDEX Ensure(Library& library, const std::string& path) {
    ALBUMINDEX found;
    if (AlbumPath(library).Find(path, found)) return found;
    if (path == AlbumPath(library).Gallery()) return MakeGallery(library, path);
    const ALBUMINDEX above = Ensure(library, Above(library, path));
    const ALBUMINDEX created{above.dwRoomID, NextId(library)};
    const bool is_added = library.Call([&](auto& catalogue) {
      return catalogue.AddAlbumInfo(created.dwRoomID, created.dwAlbumID, above.dwAlbumID,
                                    Last(path).c_str(), "");
    });
    if (is_added) return created;
    throw ToolError(ExitCode::kCatalogue, "the album " + Printable(path) + " was not created");
  }

  /// A new catalogue has no room at all.
  static ALBUMINDEX MakeGallery(Library& library, const std::string& name) {
    ROOMINFO gallery;
    std::memcpy(gallery.szRoomName, name.c_str(), name.size());
    library.Call([&](auto& catalogue) { return catalogue.AddRoomInfo(gallery); });
    return {0, 0};
  }

  /// The smallest above all others, of whatever room.
  static DWORD NextId(Library& library) {
    vdstomgr::AlbumArray albums;
    library.Call([&](auto& catalogue) { return catalogue.GetAlbumList(albums); });
    DWORD highest = 0;
    for (const ALBUMINFO& album : albums) highest = std::max(highest, album.dwAlbumID);
    return highest + 1;
  }
};

struct AlbumRename {
  std::string path;
  std::string new_name;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Word("ALBUM", path, "The album")
        .Word("NAME", new_name, "Its new name; it stays where it is")
        .Change(change);
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    const ALBUMINDEX index = AlbumPath(library).Album(path);
    const std::string name = Composed(new_name);
    RequireName(name, kMostAlbumCharacters);
    ALBUMINFO album;
    library.Call([&](auto& catalogue) {
      return catalogue.GetAlbumInfo(index.dwRoomID, index.dwAlbumID, album);
    });
    RequireFree(library, album, name);
    ChangePlan plan{"album", "renamed " + Printable(name)};
    plan.AddUnless(name == album.szAlbumName, std::to_string(index.dwAlbumID),
                   AlbumPath(library).NameOf(index));
    return CarryOut(invocation, plan, change, [&] {
      library.Call([&](auto& catalogue) {
        return catalogue.ChangeAlbumName(index.dwRoomID, index.dwAlbumID, name.c_str(),
                                         album.szDesc);
      });
    });
  }

  /// Names that differ in case only are the same to the catalogue.
  static void RequireFree(Library& library, const ALBUMINFO& album, const std::string& name) {
    const bool is_taken =
        AsciiLower(name) != AsciiLower(album.szAlbumName) && library.Call([&](auto& catalogue) {
          return catalogue.IsAlbum(album.dwRoomID, album.dwParentID, name.c_str());
        });
    if (is_taken) RefuseTaken(name);
  }
};

struct AlbumDelete {
  WordList paths;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Albums(paths).FinalChange(change).Notes(
        "The albums below are deleted too; the photos stay in the catalogue.");
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    std::vector<ALBUMINDEX> albums;
    for (const Name& name : ReadNames(paths, std::cin))
      AddFamily(library, AlbumPath(library).Album(name.text), albums);
    ChangePlan plan{"album", "deleted", true};
    for (const ALBUMINDEX album : albums)
      plan.Add(std::to_string(album.dwAlbumID), AlbumPath(library).NameOf(album));
    return CarryOut(invocation, plan, change, [&] {
      for (const ALBUMINDEX album : albums)
        library.Call([&](auto& catalogue) {
          return catalogue.RemoveAlbumInfo(album.dwRoomID, album.dwAlbumID);
        });
    });
  }

  static void AddFamily(Library& library, ALBUMINDEX album, std::vector<ALBUMINDEX>& albums) {
    const auto add = [&](ALBUMINDEX member) {
      if (std::find(albums.begin(), albums.end(), member) == albums.end()) albums.push_back(member);
    };
    add(album);
    for (const ALBUMINFO& below : AlbumsIn(library, album, true))
      add({below.dwRoomID, below.dwAlbumID});
  }
};

/// Puts photos into an album, or takes them out.
template <bool kAdds>
struct AlbumPhotos {
  std::string path;
  PhotoWords photos;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Word("ALBUM", path, "The album").Photos(photos).Change(change);
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    const ALBUMINDEX album = AlbumPath(library).Album(path);
    const std::string name = Printable(AlbumPath(library).NameOf(album));
    return ChangePhotos(
        invocation, library, photos, change,
        {.participle = (kAdds ? "added to " : "removed from ") + name,
         .is_done =
             [&](const PHOTOINFO& photo) { return IsIn(library, photo.szGUID, album) == kAdds; },
         .apply = [&](const CStringArray& guids) { Apply(library, guids, album); }});
  }

  static bool IsIn(Library& library, const char* guid, ALBUMINDEX album) {
    return library.Call([&](auto& catalogue) {
      return catalogue.IsAlbumPhoto(guid, album.dwRoomID, album.dwAlbumID);
    });
  }

  static void Apply(Library& library, const CStringArray& guids, ALBUMINDEX album) {
    library.Call([&](auto& catalogue) {
      return kAdds ? catalogue.AddAlbum(guids, album.dwRoomID, album.dwAlbumID)
                   : catalogue.RemoveAlbum(guids, album.dwRoomID, album.dwAlbumID);
    });
  }
};

struct AlbumPathsOf {
  PhotoWords photos;

  void Declare(Command& command) { command.Photos(photos); }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    CataloguePath folders(library);
    AlbumPath paths(library);
    Table rows({"guid", "photo", "album"});
    for (const CString& guid : SelectPhotos(library, photos)) {
      const auto photo = library.Photo(guid.Str());
      vdstomgr::AlbumArray albums;
      library.Call([&](auto& catalogue) { return catalogue.GetAlbumLists(guid, albums); });
      for (const ALBUMINFO& album : albums) {
        rows.Add({guid.Str(), photo ? folders.NameOf(*photo) : "",
                  paths.NameOf({album.dwRoomID, album.dwAlbumID})});
      }
    }
    return invocation.Write(rows);
  }
};

}  // namespace

void AddAlbum(CommandGroup& tool) {
  CommandGroup album = tool.AddGroup("album", "Look after albums and the photos in them", kNotes);
  album.Add<AlbumList>("ls", "List all albums, or what is in one");
  album.Add<AlbumCreate>("create", "Create albums");
  album.Add<AlbumRename>("rename", "Rename an album");
  album.Add<AlbumPhotos<true>>("add", "Add photos to an album");
  album.Add<AlbumPhotos<false>>("remove", "Take photos out of an album");
  album.Add<AlbumDelete>("delete", "Delete albums; their photos stay");
  album.Add<AlbumPathsOf>("path", "Show which albums photos are in");
}

}  // namespace vdsto
