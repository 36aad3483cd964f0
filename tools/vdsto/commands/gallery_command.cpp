#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/gallery/gallery.h"
#include "tools/vdsto/gallery/gallery_output.h"
#include "tools/vdsto/gallery/gallery_writer.h"
#include "tools/vdsto/library/trash_bin.h"
#include "tools/vdsto/selection/photo_query.h"
#include "tools/vdsto/selection/tags.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(Open index.html in DIR: no server is needed, and no page asks for anything outside. DIR is made when it
is not there; it may be empty or, with --force, a gallery that vdsto made. A folder that holds anything else
is refused. --tag alone means all photos with the tag, and --since, --until, --camera, --rating and --folder
narrow --find. Do not put a gallery into a folder that is imported: its thumbnails would be, too.)";

struct MakeGallery {
  PhotoQuery query;
  WordList tags;
  std::string target;
  std::string title;
  bool force = false;

  void Declare(Command& command) {
    command.Photos(query.photos, false)
        .Option("--find", "TEXT", query.texts,
                "Photos that vdsto find TEXT finds; of several texts all must be in the name")
        .Filter(query.filter)
        .Option("-t,--tag", "TAG", tags.words,
                "Only photos that carry this tag; given again, those that carry all of the tags")
        .RequiredOption("-o,--output", "DIR", target, "The folder to write")
        .Option("--title", "TEXT", title, "The gallery's title (else the first PHOTO, TEXT or TAG)")
        .Flag("-f,--force", force, "Replace a gallery that is there")
        .Notes(kNotes);
  }

  ExitCode Run(Invocation& invocation) const {
    if (query.IsEmpty() && tags.words.empty())
      throw ToolError(ExitCode::kUsage, "name photos, or say --find TEXT or --tag TAG");
    Library library = invocation.OpenLibraryToRead();
    CStringArray guids = query.IsEmpty() ? AllPhotos(library) : SelectPhotos(library, query);
    if (!tags.words.empty()) guids = WithAllTags(library, guids, SelectTags(library, tags));
    if (guids.IsEmpty()) throw ToolError(ExitCode::kNotFound, "no photos for a gallery");
    GalleryOutput output(target, force);
    Gallery gallery = ReadGallery(library, guids);
    const size_t thumbnails = WriteGallery(gallery, Title(), library, output);
    output.Publish();
    return invocation.Write(Told(gallery, thumbnails));
  }

 private:
  static CStringArray AllPhotos(Library& library) {
    CStringArray guids;
    library.ForEachPhoto([&](const PHOTOINFO& photo) {
      if (!IsTrashFolder(photo.dwFolderID)) guids.Add(photo.szGUID);
    });
    return guids;
  }

  std::string Title() const {
    if (!title.empty()) return title;
    for (const auto& words : {query.photos.words, query.texts, tags.words}) {
      const std::string name(words.empty() ? "" : LastComponent(words.front()));
      if (!name.empty() && name != "-") return name;
    }
    return "Photos";
  }

  Answer Told(const Gallery& gallery, size_t thumbnails) const {
    const size_t count = gallery.photos.size();
    const std::string without =
        thumbnails == count ? ""
                            : ", " + Counted(count - thumbnails, "photo") + " without thumbnail";
    return Facts()
        .ForPrograms("folder", target)
        .ForPrograms("photos", count)
        .ForPrograms("thumbnails", thumbnails)
        .ForPeople(Counted(count, "photo") + " in " + Printable(target) + "/index.html" + without);
  }
};

}  // namespace

void AddGallery(CommandGroup& tool) {
  tool.Add<MakeGallery>("gallery", "Write photos as a gallery of web pages");
}

}  // namespace vdsto
