#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/upload_gifts.h"
#include "tools/vdsto/library/upload_queue.h"
#include "tools/vdsto/selection/album_path.h"
#include "tools/vdsto/selection/photo_query.h"
#include "tools/vdsto/selection/tags.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

struct UploadAdd {
  PhotoQuery query;
  std::vector<std::string> tags;
  std::vector<std::string> albums;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Photos(query.photos, false)
        .Option("--find", "TEXT", query.texts,
                "Photos that vdsto find TEXT finds; of several texts all must be in the name")
        .Filter(query.filter)
        .Option("--tag", "TAG", tags,
                "A tag, also a new one, that the photos get when they are uploaded")
        .Option("--album", "ALBUM", albums, "An album that they get into then")
        .Change(change)
        .Notes("--since, --until, --camera, --rating and --folder narrow --find.");
  }

  ExitCode Run(Invocation& invocation) const {
    if (query.IsEmpty()) throw ToolError(ExitCode::kUsage, "name photos, or say --find TEXT");
    Library library = invocation.OpenLibrary();
    CataloguePath paths(library);
    UploadGifts gifts = KnownGifts(library);
    const std::vector<std::string> new_tags = NewTags(library);
    const auto apply = [&](const CStringArray& guids) {
      for (const std::string& name : new_tags) gifts.tags.Add(TagOrNew(library, name));
      CStringArray added;
      for (const CString& guid : guids)
        if (!IsUnderWay(library, guid)) added.Add(guid);
      // Before the photos are queued, so that a run that is at work cannot miss them.
      if (!gifts.IsEmpty())
        for (const CString& guid : guids) AddGifts(library, guid.Str(), gifts);
      QueueUploads(library, added, [&](uint32_t folder) { return paths.NameOf(folder); });
    };
    return ChangePhotos(invocation, library, SelectPhotos(library, query), change,
                        {.participle = "queued",
                         .is_done =
                             [&](const PHOTOINFO& photo) {
                               RequireUploadable(photo);
                               return new_tags.empty() && IsUnderWay(library, photo.szGUID) &&
                                      HasGifts(library, photo.szGUID, gifts);
                             },
                         .apply = apply});
  }

 private:
  UploadGifts KnownGifts(Library& library) const {
    UploadGifts gifts;
    for (const std::string& name : tags)
      if (const auto tag = FindTag(library, name)) gifts.tags.Add(tag->dwTagID);
    for (const std::string& path : albums) {
      ALBUMINDEX album = AlbumPath(library).Album(path);
      gifts.albums.Add(album);
    }
    return gifts;
  }

  /// The tags that are to be made.
  std::vector<std::string> NewTags(Library& library) const {
    std::vector<std::string> names;
    for (const std::string& name : tags)
      if (!FindTag(library, name)) names.push_back(NewTagName(name));
    return names;
  }

  static uint32_t TagOrNew(Library& library, const std::string& name) {
    const auto tag = FindTag(library, name);
    return tag ? tag->dwTagID : MakeTag(library, name);
  }

  static bool IsUnderWay(Library& library, const char* guid) {
    UPLOADLIST row;
    return library.Call([&](auto& catalogue) {
      return catalogue.GetUploadInfo(guid, row) && !IsFinished(row.nStatus);
    });
  }
};

}  // namespace

void AddUploadAdd(CommandGroup& upload) {
  upload.Add<UploadAdd>("add", "Queue photos; those that are queued already stay where they are");
}

}  // namespace vdsto
