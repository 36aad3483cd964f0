#include <map>
#include <set>

#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/cli/photo_text.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/selection/tags.h"

namespace vdsto {
namespace {

constexpr int kAnyBit = -1;
constexpr int kLastBit = 7;

BYTE MaskOf(int bit) {
  constexpr BYTE kAll = 255;  // lets all pass
  return bit == kAnyBit ? kAll : static_cast<BYTE>(1 << bit);
}

/// The photos of one tag, or of all tags together.
struct TaggedPhotos {
  DWORD tag;
  CStringArray guids;
};

struct Tagged {
  std::vector<std::string> names;
  bool all = false;
  int flag = kAnyBit;
  int shared = kAnyBit;
  bool ends_with_zero = false;

  void Declare(Command& command) {
    command.Words("TAG", names, "The tags' names; case and blanks at the ends do not count")
        .Flag("-a,--all", all, "Only photos that carry all of the tags")
        .NumberOption("--flag", "N", flag, 0, kLastBit, "Only photos with this flag, 0 to 7")
        .NumberOption("--public", "N", shared, 0, kLastBit,
                      "Only photos with this bit of their public state, 0 to 7")
        .Flag("-0,--null", ends_with_zero, "Write paths only, each ended by a zero byte")
        .Notes("Photos in the trash are left out: vdsto trash ls shows them.");
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    std::vector<TAGINFO> wanted;
    for (const std::string& name : names) wanted.push_back(TagNamed(library, name));
    CataloguePath paths(library);
    const std::vector<TaggedPhotos> found = Find(library, wanted);
    if (ends_with_zero) return WritePaths(invocation, library, paths, found);
    Json groups = Json::array();
    Table rows = PhotoTable();
    for (const TaggedPhotos& group : found) {
      Json photos = Json::array();
      ForEachPhoto(library, group, [&](const PHOTOINFO& photo) {
        photos.push_back(PhotoAsJson(photo, paths.NameOf(photo.dwFolderID)));
        const std::string name = paths.NameOf(photo);
        AddPhoto(photo, found.size() > 1 ? NameIn(wanted, group.tag) + ": " + name : name, rows);
      });
      const Json tag = all ? Json() : Json(NameIn(wanted, group.tag));
      groups.push_back({{"tag", tag}, {"photos", std::move(photos)}});
    }
    return invocation.Write({std::move(groups), rows.Text()});
  }

 private:
  std::vector<TaggedPhotos> Find(Library& library, const std::vector<TAGINFO>& wanted) const {
    CDWordArray ids;
    for (const TAGINFO& tag : wanted) ids.Add(tag.dwTagID);
    std::vector<TaggedPhotos> found;
    library.Call([&](auto& catalogue) {
      vdstomgr::ItemGroupArray groups;
      const int count =
          catalogue.Lock_FilteredTagItemList(groups, ids, true, MaskOf(flag), MaskOf(shared));
      for (const GA_ITEMINFO_GROUP& group : groups) {
        found.push_back({group.dwTagID, {}});
        for (const GA_ITEMINFO* item : *group.pItemList) found.back().guids.Add(item->GUID);
      }
      catalogue.Free_FilteredTagItemList(groups);
      return count >= 0;
    });
    return all ? WithAll(std::move(found), wanted) : found;
  }

  /// The catalogue's own way to this writes tables, which a library to be read does not let, and
  /// which two processes would do to each other.
  static std::vector<TaggedPhotos> WithAll(std::vector<TaggedPhotos> found,
                                           const std::vector<TAGINFO>& wanted) {
    std::set<DWORD> tags;
    for (const TAGINFO& tag : wanted) tags.insert(tag.dwTagID);
    if (found.size() < tags.size()) return {};
    std::map<CString, size_t> counts;
    for (const TaggedPhotos& group : found) {
      for (const CString& guid : group.guids) ++counts[guid];
    }
    CStringArray common;
    for (const CString& guid : found.front().guids) {
      if (counts[guid] == found.size()) common.Add(guid);
    }
    return {{found.front().tag, common}};
  }

  /// Deleted photos and those in the trash are left out.
  template <class Body>
  static void ForEachPhoto(Library& library, const TaggedPhotos& group, Body body) {
    for (const CString& guid : group.guids) {
      const auto photo = library.Photo(guid.Str());
      if (photo && !IsTrashFolder(photo->dwFolderID)) body(*photo);
    }
  }

  static std::string NameIn(const std::vector<TAGINFO>& tags, DWORD id) {
    for (const TAGINFO& tag : tags)
      if (tag.dwTagID == id) return tag.szTagName;
    return {};
  }

  /// Each once, whichever tags it carries.
  static ExitCode WritePaths(Invocation& invocation, Library& library, CataloguePath& paths,
                             const std::vector<TaggedPhotos>& found) {
    std::set<std::string> written;
    std::string text;
    for (const TaggedPhotos& group : found) {
      ForEachPhoto(library, group, [&](const PHOTOINFO& photo) {
        if (written.insert(photo.szGUID).second) text += paths.NameOf(photo) + '\0';
      });
    }
    return invocation.WriteBytes({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  }
};

}  // namespace

void AddTagged(CommandGroup& tool) {
  tool.Add<Tagged>("tagged", "List the photos that carry tags");
}

}  // namespace vdsto
