#include <limits>
#include <unordered_set>

#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/cli/photo_text.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/selection/catalogue_path.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(A round: vdsto sync pending lists what is to be sent, you send it, and vdsto sync sent notes it. What
changes between the two is pending again in the next round.)";

vdstomgr::PhotoSyncArray Pending(Library& library) {
  vdstomgr::PhotoSyncArray pending;
  library.Call([&](auto& catalogue) {
    return catalogue.GetPhotoSyncAllInfo(pending, std::numeric_limits<int>::max());
  });
  return pending;
}

std::string Parts(const PHOTOSYNC_INFO& info) {
  return info.bInfoSync && info.bTagSync ? "photo, tags" : info.bTagSync ? "tags" : "photo";
}

struct SyncPending {
  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    library.Call([](auto& catalogue) {
      catalogue.MovePhotoSyncFlag();
      return true;
    });
    CataloguePath paths(library);
    Json list = Json::array();
    Table table({"what", "name"});
    for (const PHOTOSYNC_INFO& info : Pending(library)) {
      Json photo = PhotoAsJson(info.Photo, paths.NameOf(info.Photo.dwFolderID));
      Json tags = Json::array();
      for (const DWORD tag : info.TagIDs) tags.push_back(tag);
      list.push_back({{"send_photo", info.bInfoSync != 0},
                      {"send_tags", info.bTagSync != 0},
                      {"tag_ids", std::move(tags)},
                      {"photo", std::move(photo)}});
      table.Add({Parts(info), paths.NameOf(info.Photo)});
    }
    return invocation.Write({std::move(list), table.Text()});
  }
};

struct SyncSent {
  PhotoWords photos;
  ChangeOptions change;

  void Declare(Command& command) { command.Photos(photos).Change(change); }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    std::unordered_set<std::string> pending;
    for (const PHOTOSYNC_INFO& info : Pending(library)) pending.insert(info.Photo.szGUID);
    return ChangePhotos(
        invocation, library, photos, change,
        {.participle = "noted as sent",
         .is_done = [&](const PHOTOINFO& photo) { return pending.count(photo.szGUID) == 0; },
         .apply = [&](const CStringArray& guids) { NoteSent(library, guids); }});
  }

 private:
  static void NoteSent(Library& library, const CStringArray& guids) {
    vdstomgr::PhotoSyncArray sent;
    for (const CString& guid : guids) {
      PHOTOSYNC_INFO info;
      info.Photo.SetGUID(guid);
      sent.Add(info);
    }
    library.Call([&](auto& catalogue) { return catalogue.DelPhotoSyncAllInfo(sent); });
  }
};

}  // namespace

void AddSync(CommandGroup& tool) {
  CommandGroup sync =
      tool.AddGroup("sync", "Hand changed photos over to a synchronisation", kNotes);
  sync.Add<SyncPending>("pending", "List the photos that are to be sent, and begin a round");
  sync.Add<SyncSent>("sent", "Note that photos were sent");
}

}  // namespace vdsto
