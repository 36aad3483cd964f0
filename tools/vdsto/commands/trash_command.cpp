#include <map>

#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/photo_text.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/folder_changes.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/library/store_repair.h"
#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/selection/trash_selection.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(A photo in the trash keeps its rating, title, description, tags, albums and flags, and has them
again when it is restored. Its file stays where it is, and vdsto import leaves it alone; when the trash is
emptied, the next import of that file makes it a new photo.)";
constexpr const char* kTrashedNotes =
    R"(A PHOTO is a GUID, a file of this computer, a name, or the path that the photo had or a pattern
of it, in which * is any text, also with '/'. A folder stands for all that was in it or below it. The word -
stands for a list of names on standard input.)";

struct TrashPut {
  PhotoWords photos;
  ChangeOptions change;

  void Declare(Command& command) { command.Photos(photos).Change(change); }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    return ChangePhotos(
        invocation, library, photos, change,
        {.participle = "put into the trash",
         .is_done = [](const PHOTOINFO& photo) { return IsTrashFolder(photo.dwFolderID); },
         .apply = [&](const CStringArray& guids) { PutIntoTrash(library, guids); }});
  }
};

struct TrashList {
  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    Json photos = Json::array();
    Table rows({"deleted", "size", "name"});
    for (const auto& [photo, full_path, deleted] : PhotosInTrash(library)) {
      const std::string folder = PathForUsers(full_path);
      photos.push_back(PhotoAsJson(photo, folder));
      photos.back()["deleted"] = TimeFact(deleted).json;
      rows.Add({TimeFact(deleted), SizeFact(photo.FileSize), Joined(folder, photo.GetFileName())});
    }
    return invocation.Write(Answer{std::move(photos), rows.Text()});
  }
};

ChangePlan PlanFor(const std::vector<TrashedPhoto>& photos, const ChangeOptions& options,
                   std::string participle) {
  ChangePlan plan{"photo", std::move(participle)};
  for (const auto& [photo, folder, deleted] : photos) {
    plan.changed.push_back(photo.szGUID);
    if (options.dry_run) plan.names.push_back(Joined(PathForUsers(folder), photo.GetFileName()));
  }
  return plan;
}

CStringArray GuidsOf(const std::vector<TrashedPhoto>& photos) {
  CStringArray guids;
  for (const TrashedPhoto& trashed : photos) guids.Add(trashed.photo.szGUID);
  return guids;
}

struct TrashRestore {
  TrashWords words;
  std::string into;
  ChangeOptions change;

  void Declare(Command& command) {
    command.TrashedPhotos(words, true)
        .Option("--into", "FOLDER", into, "Restore into this folder, not where they were")
        .Change(change)
        .Notes(kTrashedNotes);
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    const auto photos = SelectTrashed(library, words);
    const std::string target = TargetPath(library);
    RequirePlaces(library, photos, target);
    return CarryOut(invocation, PlanFor(photos, change, "restored"), change, [&] {
      for (const TrashedPhoto& trashed : photos) {
        const uint32_t folder = EnsureFolder(library, target.empty() ? trashed.folder : target);
        TakeOutOfTrash(library, trashed.photo.szGUID, folder);
      }
    });
  }

  /// From a root's name down; empty when each goes where it was.
  std::string TargetPath(Library& library) const {
    if (into.empty()) return {};
    const uint32_t folder = CataloguePath(library).Folder(into);
    if (IsTrashFolder(folder))
      throw ToolError(ExitCode::kUsage, "--into the trash restores nothing: name another folder");
    return library.Call([&](auto& catalogue) { return catalogue.GetServerPathName(folder); }).Str();
  }

  static void RequirePlaces(Library& library, const std::vector<TrashedPhoto>& photos,
                            const std::string& target) {
    for (const auto& [photo, old_path, deleted] : photos) {
      const std::string name = photo.GetFileName();
      const std::string path = target.empty() ? old_path : target;
      if (path.empty())
        throw ToolError(ExitCode::kRefused, "it is not known where " + Printable(name) +
                                                " was: say --into and a folder");
      const uint32_t folder = library.Call(
          [&](auto& catalogue) { return catalogue.GetFolderIDFromPath(path.c_str()); });
      if (folder != vdstomgr::kNoFolder && HasPhotoNamed(library, folder, name))
        throw ToolError(ExitCode::kRefused,
                        Printable(PathForUsers(Joined(path, name))) +
                            " is there already: say --into and another folder, or move that one");
    }
  }
};

/// Thumbnails go after the photos that name them.
void RemoveImages(const Library& library, const std::vector<TrashedPhoto>& photos,
                  const ImportLock& lock) {
  PrepareImageStore(library.Folder(), lock);
  ImageStore images(library.Folder());
  if (!images.Open()) return;
  for (const TrashedPhoto& trashed : photos) {
    const std::string key = ImageKeyOf(trashed.photo.GetLTBURL());
    if (!key.empty() && images.Has(key)) images.Remove(key);
  }
}

struct TrashEmpty {
  TrashWords words;
  ChangeOptions change;

  void Declare(Command& command) {
    command.TrashedPhotos(words, false).FinalChange(change).Notes(kTrashedNotes);
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    const ImportLock lock = invocation.LockOutImports();
    const auto photos = SelectTrashed(library, words);
    ChangePlan plan = PlanFor(photos, change, "deleted for good");
    plan.is_final = true;
    return CarryOut(invocation, plan, change, [&] {
      DeleteForGood(library, GuidsOf(photos));
      RemoveImages(library, photos, lock);
    });
  }
};

}  // namespace

void AddTrash(CommandGroup& tool) {
  CommandGroup trash = tool.AddGroup("trash", "Delete photos so that they can come back", kNotes);
  trash.Add<TrashPut>("put", "Put photos into the trash");
  trash.Add<TrashList>("ls", "List what is in the trash and where it was");
  trash.Add<TrashRestore>("restore", "Bring photos back to where they were");
  trash.Add<TrashEmpty>("empty", "Delete what is in the trash for good: all, or the photos named");
}

}  // namespace vdsto
