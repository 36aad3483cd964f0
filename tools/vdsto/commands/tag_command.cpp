#include <map>
#include <unordered_set>

#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/cli/photo_text.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/trash_bin.h"
#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/selection/tags.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(A tag is named without regard to case, and keeps the spelling that it was made with. vdsto tag remove
takes a tag off photos and keeps the tag; vdsto tag delete deletes tags from all photos.)";

class Carriers {
 public:
  Carriers(Library& library, uint32_t tag) {
    for (const CString& guid : PhotosWithTag(library, tag)) guids_.insert(guid.Str());
  }
  bool Has(const PHOTOINFO& photo) const { return guids_.count(photo.szGUID) != 0; }

 private:
  std::unordered_set<std::string> guids_;
};

struct TagAdd {
  std::string tag;
  PhotoWords photos;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Tag(tag).Photos(photos).Change(change).Notes(
        "A tag that the catalogue does not have yet is made.");
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    const auto known = FindTag(library, tag);
    return known ? Add(invocation, library, *known) : AddNew(invocation, library);
  }

 private:
  ExitCode Add(Invocation& invocation, Library& library, const TAGINFO& known) const {
    const Carriers carriers(library, known.dwTagID);
    return ChangePhotos(
        invocation, library, photos, change,
        {.participle = "tagged " + Printable(known.szTagName),
         .is_done = [&](const PHOTOINFO& photo) { return carriers.Has(photo); },
         .apply = [&](const CStringArray& guids) { Tag(library, guids, known.dwTagID); },
         .details = {{"tag", known.szTagName}, {"new_tag", false}}});
  }

  ExitCode AddNew(Invocation& invocation, Library& library) const {
    const std::string name = NewTagName(tag);
    return ChangePhotos(
        invocation, library, photos, change,
        {.participle = "tagged " + Printable(name) + ", a new tag",
         .apply = [&](const CStringArray& guids) { Tag(library, guids, MakeTag(library, name)); },
         .details = {{"tag", name}, {"new_tag", true}}});
  }

  static void Tag(Library& library, const CStringArray& guids, uint32_t id) {
    library.Call([&](auto& catalogue) { return catalogue.AddTag(guids, id, true); });
  }
};

struct TagRemove {
  std::string tag;
  PhotoWords photos;
  ChangeOptions change;

  void Declare(Command& command) { command.Tag(tag).Photos(photos).Change(change); }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    const TAGINFO known = TagNamed(library, tag);
    const Carriers carriers(library, known.dwTagID);
    const auto remove = [&](const CStringArray& guids) {
      library.Call([&](auto& catalogue) { return catalogue.RemoveTag(guids, known.dwTagID); });
    };
    return ChangePhotos(invocation, library, photos, change,
                        {.participle = "without the tag " + Printable(known.szTagName),
                         .is_done = [&](const PHOTOINFO& photo) { return !carriers.Has(photo); },
                         .apply = remove,
                         .details = {{"tag", known.szTagName}}});
  }
};

/// The change of whole tags: from how many photos they go, and whether that is a loss.
ChangePlan PlanFor(Library& library, const std::vector<TAGINFO>& tags,
                   const std::string& participle) {
  std::unordered_set<std::string> guids;
  ChangePlan plan{.noun = "tag", .participle = participle};
  for (const TAGINFO& tag : tags) {
    plan.Add(std::to_string(tag.dwTagID), tag.szTagName);
    for (const CString& guid : PhotosWithTag(library, tag.dwTagID)) guids.insert(guid.Str());
  }
  plan.is_final = !guids.empty();
  if (plan.is_final) plan.participle += " (on " + Counted(guids.size(), "photo") + ")";
  plan.details = {{"photos", guids.size()}};
  return plan;
}

/// Takes the tag off its photos, which are marked for the synchronisation, and deletes it.
void Delete(Library& library, uint32_t tag) {
  const CStringArray guids = PhotosWithTag(library, tag);
  library.Call([&](auto& catalogue) { return catalogue.RemoveTag(guids, tag); });
  library.Call([&](auto& catalogue) {
    catalogue.RemoveAllTagByTagID(tag);  // of photos that were tagged meanwhile
    catalogue.RemoveTagInfo(tag);
    return true;
  });
}

struct TagDelete {
  WordList tags;
  ChangeOptions change;

  void Declare(Command& command) { command.Tags(tags).FinalChange(change); }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    const auto selected = SelectTags(library, tags);
    return CarryOut(invocation, PlanFor(library, selected, "deleted"), change, [&] {
      for (const TAGINFO& tag : selected) Delete(library, tag.dwTagID);
    });
  }
};

struct TagMerge {
  WordList tags;
  std::string into;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Tags(tags)
        .RequiredOption("--into", "TAG", into, "The tag that all of their photos get")
        .FinalChange(change)
        .Notes("The tags that are merged are deleted.");
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    const TAGINFO target = TagNamed(library, into);
    auto merged = SelectTags(library, tags);
    std::erase_if(merged, [&](const TAGINFO& tag) { return tag.dwTagID == target.dwTagID; });
    ChangePlan plan = PlanFor(library, merged, "merged into " + Printable(target.szTagName));
    plan.details["into"] = target.szTagName;
    return CarryOut(invocation, plan, change, [&] {
      for (const TAGINFO& tag : merged) Merge(library, tag.dwTagID, target.dwTagID);
    });
  }

 private:
  static void Merge(Library& library, uint32_t tag, uint32_t target) {
    const CStringArray guids = PhotosWithTag(library, tag);
    library.Call([&](auto& catalogue) { return catalogue.AddTag(guids, target, true); });
    Delete(library, tag);
  }
};

struct TagRename {
  std::string tag;
  std::string name;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Tag(tag).Word("NAME", name, "Its new name").Change(change);
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    const TAGINFO known = TagNamed(library, tag);
    const std::string wanted = NewTagName(name);
    ChangePlan plan{.noun = "tag", .participle = "named " + Printable(wanted)};
    const auto other = FindTag(library, wanted);
    if (other && other->dwTagID != known.dwTagID) throw Taken(known, *other);
    plan.AddUnless(wanted == known.szTagName, std::to_string(known.dwTagID), known.szTagName);
    return CarryOut(invocation, plan, change,
                    [&] { Rename(library, known.dwTagID, wanted, other.has_value()); });
  }

 private:
  static ToolError Taken(const TAGINFO& tag, const TAGINFO& other) {
    const std::string name = Printable(other.szTagName);
    return {ExitCode::kRefused, "there is a tag " + name + " already: vdsto tag merge '" +
                                    Printable(tag.szTagName) + "' --into '" + name +
                                    "' makes one of both"};
  }

  /// The catalogue takes a tag's own name in another case for one that is there: such a change goes
  /// by way of a name that nobody has.
  static void Rename(Library& library, uint32_t id, const std::string& name, bool only_case) {
    const std::string between = "," + std::to_string(id);
    const bool done = library.Call([&](auto& catalogue) {
      return (!only_case || catalogue.ChangeTagName(id, between.c_str())) &&
             catalogue.ChangeTagName(id, name.c_str());
    });
    if (!done)
      throw ToolError(ExitCode::kCatalogue,
                      "the tag was not renamed: another program changed it, try again");
  }
};

struct TagList {
  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    vdstomgr::TagCountArray counts;
    vdstomgr::TagArray tags;
    library.Call([&](auto& catalogue) { return catalogue.GetTagListAndCount(counts); });
    library.Call([&](auto& catalogue) { return catalogue.GetTagList(tags); });
    std::map<uint32_t, int> photos;
    for (const TAGINFOCOUNT& tag : counts) photos[tag.dwTagID] = tag.nCount;
    Json list = Json::array();
    Table table({"photos", "name"});
    for (const TAGINFO& tag : tags) {
      const int count = photos[tag.dwTagID];
      list.push_back({{"id", tag.dwTagID}, {"name", tag.szTagName}, {"photos", count}});
      table.Add({count, std::string(tag.szTagName)});
    }
    return invocation.Write({std::move(list), table.Text()});
  }
};

struct TagOf {
  PhotoWords photos;

  void Declare(Command& command) { command.Photos(photos); }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    CataloguePath paths(library);
    TagsOfPhotos tags(library);
    Table table({"guid", "path", "tags"});
    Table for_people({"name", "tags"});
    for (const CString& guid : SelectPhotos(library, photos)) {
      const auto photo = library.Photo(guid.Str());
      if (!photo) continue;  // deleted meanwhile
      const Fact name(paths.NameOf(*photo));
      const Fact names = TagsFact(tags.Of(guid.Str()));
      table.Add({photo->szGUID, name, names});
      for_people.Add({name, names});
    }
    return invocation.Write({table.AsJson(), for_people.Text()});
  }
};

struct TagPhotos {
  std::string tag;

  void Declare(Command& command) { command.Tag(tag); }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    CataloguePath paths(library);
    Json list = Json::array();
    Table table = PhotoTable();
    for (const CString& guid : PhotosWithTag(library, TagNamed(library, tag).dwTagID)) {
      const auto photo = library.Photo(guid.Str());
      // Links outlive their photos, and those in the trash are shown by vdsto trash ls.
      if (!photo || IsTrashFolder(photo->dwFolderID)) continue;
      list.push_back(PhotoAsJson(*photo, paths.NameOf(photo->dwFolderID)));
      AddPhoto(*photo, paths.NameOf(*photo), table);
    }
    return invocation.Write({std::move(list), table.Text()});
  }
};

}  // namespace

void AddTag(CommandGroup& tool) {
  CommandGroup tag = tool.AddGroup("tag", "Tag photos, and look after the tags", kNotes);
  tag.Add<TagAdd>("add", "Tag photos; a new tag is made");
  tag.Add<TagRemove>("remove", "Take a tag off photos");
  tag.Add<TagRename>("rename", "Give a tag another name");
  tag.Add<TagMerge>("merge", "Make one tag of several");
  tag.Add<TagDelete>("delete", "Delete tags, from all photos too");
  tag.Add<TagList>("ls", "List all tags and how many photos carry each");
  tag.Add<TagOf>("of", "Show the tags of photos");
  tag.Add<TagPhotos>("photos", "List the photos that carry a tag");
}

}  // namespace vdsto
