#include <algorithm>
#include <array>
#include <limits>

#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(Only the tables named are emptied, and nothing else follows: photos of folders that are gone are
shown nowhere until vdsto mv or another import finds them. vdsto import fills photos and folders again, but
not what users have said of them. Resetting trash forgets only where its photos were; vdsto trash empty
deletes them. TABLE is one of:
photos, photo-tags, trash, folders, active-folders, tags, rooms, albums, album-photos, camera-models,
camera-lenses, my-camera-models, my-camera-lenses, sync. What views have yet to draw is emptied by vdsto
notify reset.)";

using Manager = CRkPhotoDBManager;

int CountFolders(Manager& catalogue) {
  vdstomgr::FolderArray folders;
  catalogue.GetAllFolderList(folders);
  return static_cast<int>(std::count_if(
      folders.begin(), folders.end(),
      [](const FOLDERINFO& folder) { return !vdstomgr::IsReservedFolder(folder.dwFolderID); }));
}

/// Links of tags to photos, whether or not these are there.
int CountPhotoTags(Manager& catalogue) {
  vdstomgr::TagArray tags;
  catalogue.GetTagList(tags);
  int links = 0;
  for (const auto& tag : tags) {
    CStringArray photos;
    links += catalogue.GetPhotoListWithTag(tag.dwTagID, photos);
  }
  return links;
}

int CountRooms(Manager& catalogue) {
  vdstomgr::RoomArray rooms;
  catalogue.GetAllRoomInfo(rooms);
  return static_cast<int>(std::count_if(rooms.begin(), rooms.end(),
                                        [](const ROOMINFO& room) { return room.dwRoomID != 0; }));
}

int CountActiveFolders(Manager& catalogue) {
  CDWordArray ids;
  return catalogue.GetActiveFolder(ids);
}

int CountTags(Manager& catalogue) {
  vdstomgr::TagArray tags;
  return catalogue.GetTagList(tags);
}

int CountAlbums(Manager& catalogue) {
  vdstomgr::AlbumArray albums;
  return catalogue.GetAlbumList(albums);
}

int CountAlbumPhotos(Manager& catalogue) {
  vdstomgr::RoomArray rooms;
  vdstomgr::AlbumArray albums;
  catalogue.GetAllRoomInfo(rooms);
  for (const ROOMINFO& room : rooms) catalogue.GetSubAlbumInfo(room.dwRoomID, 0, albums, true);
  int links = 0;
  for (const ALBUMINFO& album : albums) {
    CStringArray photos;
    links += catalogue.GetPhotosInAlbum(album.dwRoomID, album.dwAlbumID, photos, false);
  }
  return links;
}

template <auto get>
int CountNames(Manager& catalogue) {
  CStringArray names;
  return (catalogue.*get)(names);
}

int CountPending(Manager& catalogue) {
  vdstomgr::PhotoSyncArray pending;
  catalogue.GetPhotoSyncAllInfo(pending, std::numeric_limits<int>::max());
  return pending.GetSize();
}

struct Emptyable {
  const char* name;
  int (*count)(Manager&);
  bool (Manager::*reset)();
};

constexpr std::array kTables{
    Emptyable{"photos", [](Manager& m) { return m.GetPhotoCount(); }, &Manager::ResetPhotoMaster},
    Emptyable{"photo-tags", &CountPhotoTags, &Manager::ResetPhotoTag},
    Emptyable{"trash", [](Manager& m) { return m.GetTrashPhotoCount(); },
              &Manager::ResetTrashPhoto},
    Emptyable{"folders", &CountFolders, &Manager::ResetFolder},
    Emptyable{"active-folders", &CountActiveFolders, &Manager::ResetActiveFolder},
    Emptyable{"tags", &CountTags, &Manager::ResetTagInfo},
    Emptyable{"rooms", &CountRooms, &Manager::ResetRoomInfo},
    Emptyable{"albums", &CountAlbums, &Manager::ResetAlbumInfo},
    Emptyable{"album-photos", &CountAlbumPhotos, &Manager::ResetPhotoAlbum},
    Emptyable{"camera-models", &CountNames<&Manager::GetModel>, &Manager::ResetCameraModel},
    Emptyable{"camera-lenses", &CountNames<&Manager::GetLens>, &Manager::ResetCameraLens},
    Emptyable{"my-camera-models", &CountNames<&Manager::GetMyModel>, &Manager::ResetMyCameraModel},
    Emptyable{"my-camera-lenses", &CountNames<&Manager::GetMyLens>, &Manager::ResetMyCameraLens},
    Emptyable{"sync", &CountPending, &Manager::ResetPhotoSyncProcess},
};

const Emptyable& TableNamed(const std::string& name) {
  const auto table = std::find_if(kTables.begin(), kTables.end(),
                                  [&](const Emptyable& known) { return name == known.name; });
  if (table != kTables.end()) return *table;
  throw ToolError(ExitCode::kUsage,
                  "no table " + Printable(name) + ": vdsto reset --help names them");
}

struct Reset {
  std::vector<std::string> names;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Words("TABLE", names, "What to empty").FinalChange(change).Notes(kNotes);
  }

  ExitCode Run(Invocation& invocation) const {
    std::vector<const Emptyable*> tables;
    for (const std::string& name : names) {
      const Emptyable* table = &TableNamed(name);
      if (std::find(tables.begin(), tables.end(), table) == tables.end()) tables.push_back(table);
    }
    Library library = invocation.OpenLibrary();
    const ImportLock lock = invocation.LockOutImports();
    const ChangePlan plan = PlanFor(library, tables);
    return CarryOut(invocation, plan, change, [&] {
      for (const Emptyable* table : tables)
        library.Call([&](auto& catalogue) { return (catalogue.*table->reset)(); });
    });
  }

  static ChangePlan PlanFor(Library& library, const std::vector<const Emptyable*>& tables) {
    ChangePlan plan{"table", "emptied", true};
    std::string rows;
    for (const Emptyable* table : tables) {
      const int count = library.Call([&](auto& catalogue) { return table->count(catalogue); });
      const std::string line = std::string(table->name) + ": " + std::to_string(count);
      plan.Add(table->name, line);
      rows += (rows.empty() ? " (" : ", ") + line;
    }
    plan.participle += rows + ")";
    return plan;
  }
};

}  // namespace

void AddReset(CommandGroup& tool) {
  tool.Add<Reset>("reset", "Empty tables of the catalogue");
}

}  // namespace vdsto
