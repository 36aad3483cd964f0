#include <algorithm>
#include <cstring>
#include <iostream>

#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/folder_changes.h"
#include "tools/vdsto/selection/album_path.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr size_t kMostRoomCharacters = 50;
constexpr const char* kNotes =
    R"(Rooms hold albums (see vdsto album). Room 0, the gallery, always stays.)";

vdstomgr::RoomArray AllRooms(Library& library) {
  vdstomgr::RoomArray rooms;
  library.Call([&](auto& catalogue) { return catalogue.GetAllRoomInfo(rooms); });
  return rooms;
}

/// The catalogue's names disregard case.
void RequireFreeName(Library& library, const std::string& name, const std::string& own = {}) {
  RequireName(name, kMostRoomCharacters);
  const bool is_taken = AsciiLower(name) != AsciiLower(own) && library.Call([&](auto& catalogue) {
    return catalogue.IsRoom(name.c_str());
  });
  if (is_taken)
    throw ToolError(ExitCode::kRefused, "there is a room " + Printable(name) +
                                            " already: vdsto room ls shows all rooms");
}

void SetName(ROOMINFO& room, const std::string& name) {
  std::memset(room.szRoomName, 0, sizeof room.szRoomName);
  std::memcpy(room.szRoomName, name.c_str(), std::min(name.size(), sizeof room.szRoomName - 1));
}

struct RoomList {
  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    Table rows({"id", "photos", "name"});
    for (const ROOMINFO& room : AllRooms(library)) {
      CStringArray photos;
      library.Call(
          [&](auto& catalogue) { return catalogue.GetPhotosInRoom(room.dwRoomID, photos); });
      rows.Add({room.dwRoomID, photos.GetSize(), std::string(room.szRoomName)});
    }
    return invocation.Write(rows);
  }
};

struct RoomCreate {
  WordList names;
  ChangeOptions change;

  void Declare(Command& command) { command.NewNames(names).Change(change); }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    ChangePlan plan{"room", "created"};
    for (const Name& name : ReadNames(names, std::cin)) {
      const std::string text = Composed(name.text);
      RequireFreeName(library, text);
      plan.AddNew(text);
    }
    return CarryOut(invocation, plan, change, [&] {
      for (const std::string& name : plan.changed) Create(library, name);
    });
  }

  /// Takes the smallest id above all others.
  static void Create(Library& library, const std::string& name) {
    ROOMINFO created;
    for (const ROOMINFO& room : AllRooms(library))
      created.dwRoomID = std::max(created.dwRoomID, room.dwRoomID);
    ++created.dwRoomID;
    SetName(created, name);
    if (!library.Call([&](auto& catalogue) { return catalogue.AddRoomInfo(created); }))
      throw ToolError(ExitCode::kCatalogue, "the room " + Printable(name) + " was not created");
  }
};

struct RoomRename {
  std::string old_name;
  std::string new_name;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Word("ROOM", old_name, "The room's name")
        .Word("NAME", new_name, "Its new name")
        .Change(change);
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    ROOMINFO room = AlbumPath(library).Room(old_name);
    const std::string name = Composed(new_name);
    RequireFreeName(library, name, room.szRoomName);
    ChangePlan plan{"room", "renamed " + Printable(name)};
    plan.AddUnless(name == room.szRoomName, std::to_string(room.dwRoomID), room.szRoomName);
    SetName(room, name);
    return CarryOut(invocation, plan, change, [&] {
      library.Call([&](auto& catalogue) { return catalogue.SetRoomInfo(room); });
    });
  }
};

struct RoomDelete {
  WordList rooms;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Rooms(rooms).FinalChange(change).Notes(
        "The albums of a room are deleted with it; their photos stay in the catalogue.");
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    ChangePlan plan{"room", "deleted with all albums in it", true};
    CDWordArray ids;
    for (const Name& name : ReadNames(rooms, std::cin)) {
      const ROOMINFO room = AlbumPath(library).Room(name.text);
      if (room.dwRoomID == 0)
        throw ToolError(ExitCode::kRefused, "room 0, the gallery, cannot be deleted");
      if (std::find(ids.begin(), ids.end(), room.dwRoomID) != ids.end()) continue;
      ids.Add(room.dwRoomID);
      plan.Add(std::to_string(room.dwRoomID), room.szRoomName);
    }
    return CarryOut(invocation, plan, change, [&] {
      for (const DWORD id : ids)
        library.Call([&](auto& catalogue) { return catalogue.DelRoomInfo(id); });
    });
  }
};

}  // namespace

void AddRoom(CommandGroup& tool) {
  CommandGroup room = tool.AddGroup("room", "Look after rooms, which hold albums", kNotes);
  room.Add<RoomList>("ls", "List the rooms");
  room.Add<RoomCreate>("create", "Create rooms");
  room.Add<RoomRename>("rename", "Rename a room");
  room.Add<RoomDelete>("delete", "Delete rooms with their albums");
}

}  // namespace vdsto
