#include <algorithm>
#include <iostream>
#include <set>

#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/folder_changes.h"
#include "tools/vdsto/library/trash_bin.h"
#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/selection/name_pattern.h"
#include "tools/vdsto/selection/pattern_search.h"
#include "tools/vdsto/selection/trash_selection.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(A SOURCE is a photo or a folder: a catalogue path, a pattern of such paths ('사진/2024*'), a GUID, a
file or folder of this computer that was imported, or - for a list of names on standard input. When TARGET
is a folder, all go into it; else the one SOURCE gets the name and the place that TARGET says. Files of
this computer are not touched, and vdsto import knows moved photos again by their files.)";

/// What is to be moved: photos, and folders with all that is in them.
struct Sources {
  std::vector<PHOTOINFO> photos;
  std::vector<uint32_t> folders;

  size_t Count() const { return photos.size() + folders.size(); }
};

class SourceSelector {
 public:
  explicit SourceSelector(Library& library) : library_(library), paths_(library) {}

  bool Add(const Name& name) {
    if (const auto photo = paths_.FindPhoto(name.text)) return Add(*photo);
    if (const auto folder = paths_.FindFolder(name.text)) return Add(*folder);
    if (const auto photo = paths_.FindNamed(name.text)) return Add(*photo);
    if (!name.may_be_pattern || !IsPattern(name.text)) return false;
    const Matches matches = PatternSearch(library_).Find(name.text);
    for (const std::string& guid : matches.photos) Add(library_.Photo(guid).value());
    for (const uint32_t folder : matches.folders) Add(folder);
    return !matches.photos.empty() || !matches.folders.empty();
  }

  Sources Take() { return std::move(sources_); }

 private:
  bool Add(const PHOTOINFO& photo) {
    if (IsTrashFolder(photo.dwFolderID))
      throw ToolError(ExitCode::kRefused, Printable(photo.GetFileName()) +
                                              " is in the trash: vdsto trash restore --into "
                                              "FOLDER brings it back");
    if (known_photos_.insert(photo.szGUID).second) sources_.photos.push_back(photo);
    return true;
  }

  bool Add(uint32_t folder) {
    if (vdstomgr::IsReservedFolder(folder))
      throw ToolError(ExitCode::kRefused, "the catalogue's own folders cannot be moved: " +
                                              Printable(paths_.NameOf(folder)));
    if (known_folders_.insert(folder).second) sources_.folders.push_back(folder);
    return true;
  }

  Library& library_;
  CataloguePath paths_;
  std::set<std::string> known_photos_;
  std::set<uint32_t> known_folders_;
  Sources sources_;
};

struct Target {
  uint32_t folder;
  std::string name;  ///< the new one; empty when each keeps its own
};

Target FindTarget(Library& library, const std::string& word, const Sources& sources) {
  CataloguePath paths(library);
  const auto folder = paths.FindFolder(word);
  // "mv trip Trip": the folder itself, under a name that differs in case only.
  const bool is_itself = folder && sources.Count() == 1 && sources.folders.size() == 1 &&
                         sources.folders.front() == *folder;
  if (folder && !is_itself) return {*folder, {}};
  const std::string path = Composed(word);
  if (sources.Count() != 1 || path.ends_with('/'))
    throw ToolError(ExitCode::kNotFound,
                    "no folder " + Printable(path) + " in the catalogue: vdsto mkdir makes it");
  const std::string name(LastComponent(path));
  RequireName(name);
  const size_t slash = path.rfind('/');
  return {paths.Folder(slash == std::string::npos ? "" : path.substr(0, slash)), name};
}

[[noreturn]] void RefuseTaken(const std::string& name) {
  throw ToolError(ExitCode::kRefused, Printable(name) +
                                          " is there already: move or rename one of the two "
                                          "first");
}

class Move {
 public:
  Move(Library& library, Sources sources, Target target)
      : library_(library),
        paths_(library),
        sources_(std::move(sources)),
        target_(std::move(target)) {
    if (IsTrashFolder(target_.folder))
      throw ToolError(ExitCode::kRefused,
                      "photos go into the trash with vdsto trash put, folders with vdsto rmdir -r");
  }

  /// Leaves out what is there under that name already. Throws ToolError when something cannot go.
  ChangePlan Plan(bool with_names) {
    ChangePlan plan{Noun(), Participle()};
    PlanPhotos(plan, with_names);
    PlanFolders(plan, with_names);
    return plan;
  }

  void Apply() {
    CStringArray guids;
    for (const PHOTOINFO& photo : sources_.photos) guids.Add(photo.szGUID);
    library_.Call([&](auto& catalogue) {
      return catalogue.SetFolder(guids, target_.folder) &&
             (target_.name.empty() || catalogue.SetFileName(guids, target_.name.c_str()));
    });
    for (const uint32_t folder : sources_.folders) ApplyTo(folder);
    library_.CallSearch([&](auto& copy) {
      copy.PhotosChanged(guids);
      if (!sources_.folders.empty()) copy.FoldersChanged();
    });
  }

 private:
  std::string Noun() const {
    return sources_.folders.empty() ? "photo" : sources_.photos.empty() ? "folder" : "item";
  }

  std::string Participle() {
    const std::string folder = paths_.NameOf(target_.folder);
    return "moved to " + Printable(target_.name.empty() ? folder : PathOf(target_.name));
  }

  /// In the target folder.
  std::string PathOf(const std::string& name) {
    return PathForUsers(Joined(paths_.NameOf(target_.folder), name));
  }

  std::string NewName(const std::string& own) const {
    return target_.name.empty() ? own : target_.name;
  }

  void PlanPhotos(ChangePlan& plan, bool with_names) {
    std::set<std::string> taken;
    std::vector<PHOTOINFO> moving;
    for (const PHOTOINFO& photo : sources_.photos) {
      const std::string name = NewName(photo.GetFileName());
      if (photo.dwFolderID == target_.folder && name == photo.GetFileName()) {
        ++plan.unchanged;
        continue;
      }
      if (HasPhotoNamed(library_, target_.folder, name) || !taken.insert(name).second)
        RefuseTaken(PathOf(name));
      plan.changed.push_back(photo.szGUID);
      if (with_names) plan.names.push_back(paths_.NameOf(photo));
      moving.push_back(photo);
    }
    sources_.photos = std::move(moving);
  }

  void PlanFolders(ChangePlan& plan, bool with_names) {
    std::set<std::string> taken;
    std::vector<uint32_t> moving;
    for (const uint32_t id : sources_.folders) {
      const FOLDERINFO folder = Read(id);
      const std::string name = NewName(folder.szFolderName);
      if (folder.dwParentID == target_.folder && name == folder.szFolderName) {
        ++plan.unchanged;
        continue;
      }
      RequireNotBelow(id);
      if (FindSubFolder(library_, target_.folder, name).value_or(id) != id ||
          !taken.insert(AsciiLower(name)).second)
        RefuseTaken(PathOf(name));
      plan.changed.push_back(std::to_string(id));
      if (with_names) plan.names.push_back(paths_.NameOf(id));
      moving.push_back(id);
    }
    sources_.folders = std::move(moving);
  }

  FOLDERINFO Read(uint32_t id) {
    FOLDERINFO folder;
    library_.Call([&](auto& catalogue) { return catalogue.GetFolderInfo(id, folder); });
    return folder;
  }

  void RequireNotBelow(uint32_t id) {
    CDWordArray family{id};
    library_.Call([&](auto& catalogue) { return catalogue.GetSubFolder(id, family, true); });
    if (std::find(family.begin(), family.end(), target_.folder) != family.end())
      throw ToolError(ExitCode::kRefused,
                      Printable(paths_.NameOf(id)) + " cannot go into itself or a folder below it");
  }

  void ApplyTo(uint32_t id) {
    const auto path_of = [&] {
      return library_.Call([&](auto& catalogue) { return catalogue.GetServerPathName(id); }).Str();
    };
    const std::string old_path = path_of();
    library_.Call([&](auto& catalogue) {
      return catalogue.MoveFolder(id, target_.folder) &&
             (target_.name.empty() ||
              catalogue.RenameFolder(id, target_.name.c_str(), catalogue.GetFolderDesc(id)));
    });
    FollowMove(library_, old_path, path_of());
    TakeOverSpace(id);
  }

  /// Folders say themselves which space they are in.
  void TakeOverSpace(uint32_t id) {
    CDWordArray family{id};
    library_.Call([&](auto& catalogue) {
      catalogue.GetSubFolder(id, family, true);
      const auto space = static_cast<int32_t>(catalogue.GetFolderType(target_.folder));
      for (const DWORD member : family) {
        FOLDERINFO folder;
        if (!catalogue.GetFolderInfo(member, folder) || folder.nSpaceType == space) continue;
        folder.nSpaceType = space;
        catalogue.SetFolderInfo(folder);
      }
      return true;
    });
  }

  Library& library_;
  CataloguePath paths_;
  Sources sources_;
  Target target_;
};

struct MoveCommand {
  WordList words;  // the target is the last
  ChangeOptions change;

  void Declare(Command& command) { command.SourcesAndTarget(words).Change(change).Notes(kNotes); }

  ExitCode Run(Invocation& invocation) const {
    WordList names = words;
    const std::string target = names.words.back();
    names.words.pop_back();
    if (names.words.empty() || target.empty())
      throw ToolError(ExitCode::kUsage, "mv needs what to move and where to (see vdsto mv --help)");
    Library library = invocation.OpenLibrary();
    SourceSelector selector(library);
    SelectNames(names, "photo or folder", "vdsto ls and vdsto tree show what there is",
                [&](const Name& name) { return selector.Add(name); });
    Sources sources = selector.Take();
    const Target place = FindTarget(library, target, sources);
    Move move(library, std::move(sources), place);
    const ChangePlan plan = move.Plan(change.dry_run);
    return CarryOut(invocation, plan, change, [&] { move.Apply(); });
  }
};

}  // namespace

void AddMove(CommandGroup& tool) {
  tool.Add<MoveCommand>("mv", "Move or rename photos and folders of the catalogue");
}

}  // namespace vdsto
