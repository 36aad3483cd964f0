#include <algorithm>
#include <iostream>
#include <unordered_set>

#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/folder_changes.h"
#include "tools/vdsto/library/trash_bin.h"
#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/selection/unknown_name.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

/// The path of a folder that may not be there yet, from a root's own name down.
std::string FullPath(Library& library, const std::string& word) {
  std::string path = Composed(word);
  while (path.starts_with('/')) path.erase(0, 1);
  while (path.ends_with('/')) path.pop_back();
  const std::string top = path.substr(0, path.find('/'));
  for (const FOLDERINFO& root : library.FoldersIn(vdstomgr::kNoFolder)) {
    if (top == root.szFolderName) return path;
  }
  return Joined(vdstomgr::RootFolderName(vdstomgr::kPersonalRoot).Str(), path);
}

uint32_t FolderAt(Library& library, const std::string& full_path) {
  return library.Call(
      [&](auto& catalogue) { return catalogue.GetFolderIDFromPath(full_path.c_str()); });
}

struct MakeFolder {
  WordList paths;
  bool parents = false;
  ChangeOptions change;

  void Declare(Command& command) {
    command.NewFolders(paths)
        .Flag("-p,--parents", parents, "Make the folders above too; one that is there is no error")
        .Change(change);
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    ChangePlan plan{"folder", "made"};
    for (const Name& name : ReadNames(paths, std::cin)) {
      const std::string path = FullPath(library, name.text);
      if (FolderAt(library, path) != vdstomgr::kNoFolder) {
        RefuseUnlessParents(path);
        ++plan.unchanged;
      } else {
        RequireMakeable(library, path, plan.changed);
        plan.AddNew(path);
      }
    }
    return CarryOut(invocation, plan, change, [&] {
      for (const std::string& path : plan.changed) EnsureFolder(library, path);
    });
  }

 private:
  void RefuseUnlessParents(const std::string& path) const {
    if (parents) return;
    throw ToolError(ExitCode::kRefused, "the folder " + Printable(path) + " is there already");
  }

  /// Every name of the path must be one, and without --parents the folder above must be there or be
  /// made before.
  void RequireMakeable(Library& library, const std::string& path,
                       const std::vector<std::string>& made) const {
    const std::string parent = ParentOf(path);
    RequireName(std::string(LastComponent(path)));
    if (FolderAt(library, parent) != vdstomgr::kNoFolder) return RequireOpenFor(library, parent);
    if (std::find(made.begin(), made.end(), parent) != made.end()) return;
    if (!parents) throw NotInCatalogue("folder", {parent}, "say --parents to make it too");
    RequireMakeable(library, parent, made);
  }

  static void RequireOpenFor(Library& library, const std::string& parent) {
    if (!IsTrashFolder(FolderAt(library, parent))) return;
    throw ToolError(ExitCode::kRefused, "the trash has no folders: make it somewhere else");
  }
};

struct RemoveFolder {
  FolderWords folders;
  bool recursive = false;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Folders(folders)
        .Flag("-r,--recursive", recursive,
              "Also the folders below, and put all photos into the trash")
        .FinalChange(change)
        .Notes(
            "A folder that holds something is removed with --recursive only. vdsto trash "
            "restore makes it\nagain for the photos that were in it.");
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    const ImportLock lock = invocation.LockOutImports();
    CDWordArray ids = Selected(library);
    const CStringArray photos = PhotosOf(library, ids);
    RequireEmpty(library, ids, photos);
    return CarryOut(invocation, PlanFor(library, ids, photos), change, [&] {
      PutIntoTrash(library, photos);
      library.Call([&](auto& catalogue) {
        return catalogue.DelActiveFolder(ids) && catalogue.DeleteFolderInfo(ids);
      });
      library.CallSearch([](auto& copy) { copy.FoldersChanged(); });
    });
  }

 private:
  /// Those below included, each once.
  CDWordArray Selected(Library& library) const {
    CDWordArray ids;
    std::unordered_set<uint32_t> known;
    for (const uint32_t id : SelectFolders(library, folders)) {
      if (vdstomgr::IsReservedFolder(id))
        throw ToolError(ExitCode::kRefused, "the catalogue's own folders cannot be removed: " +
                                                Printable(CataloguePath(library).NameOf(id)));
      CDWordArray family{id};
      if (recursive)
        library.Call([&](auto& catalogue) { return catalogue.GetSubFolder(id, family, true); });
      for (const DWORD member : family) {
        if (known.insert(member).second) ids.Add(member);
      }
    }
    return ids;
  }

  static CStringArray PhotosOf(Library& library, const CDWordArray& ids) {
    CStringArray guids;
    for (const DWORD id : ids)
      library.Call([&](auto& catalogue) { return catalogue.GetPhotoInFolder(id, guids); });
    return guids;
  }

  void RequireEmpty(Library& library, const CDWordArray& ids, const CStringArray& photos) const {
    if (recursive) return;
    const std::unordered_set<DWORD> leaving(ids.begin(), ids.end());
    bool is_empty = photos.IsEmpty();
    for (const DWORD id : ids) {
      for (const FOLDERINFO& child : library.FoldersIn(id))
        is_empty = is_empty && leaving.contains(child.dwFolderID);
    }
    if (!is_empty)
      throw ToolError(ExitCode::kRefused,
                      "something is in there: say --recursive to put the photos into the trash");
  }

  ChangePlan PlanFor(Library& library, const CDWordArray& ids, const CStringArray& photos) const {
    CataloguePath paths(library);
    ChangePlan plan{"folder", "removed", recursive};
    if (!photos.IsEmpty())
      plan.participle += ", with " + Counted(static_cast<size_t>(photos.GetSize()), "photo") +
                         " put into the trash";
    for (const DWORD id : ids) {
      plan.changed.push_back(std::to_string(id));
      if (change.dry_run) plan.names.push_back(paths.NameOf(id));
    }
    return plan;
  }
};

}  // namespace

void AddMakeFolder(CommandGroup& tool) {
  tool.Add<MakeFolder>("mkdir", "Make folders in the catalogue");
  tool.Add<RemoveFolder>("rmdir", "Remove folders from the catalogue");
}

}  // namespace vdsto
