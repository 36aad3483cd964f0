#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/commands/commands.h"

namespace vdsto {
namespace {

void SetRating(Library& library, const CStringArray& guids, BYTE rating) {
  for (const CString& guid : guids) {
    library.Call([&](auto& catalogue) {
      PHOTOINFO photo;
      if (!catalogue.GetPhotoInfo(guid, photo)) return false;
      photo.SetRating(rating);
      photo.SetInfoSync(1);
      return catalogue.SetPhotoInfo(photo, false);
    });
  }
}

struct Rate {
  int rating = 0;
  PhotoWords photos;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Number("RATING", rating, 0, 5, "1 to 5; 0 takes the rating away")
        .Photos(photos)
        .Change(change);
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    const auto wanted = static_cast<BYTE>(rating);
    return ChangePhotos(
        invocation, library, photos, change,
        {.participle = "rated " + std::to_string(rating),
         .is_done = [&](const PHOTOINFO& photo) { return photo.byteRating == wanted; },
         .apply = [&](const CStringArray& guids) { SetRating(library, guids, wanted); }});
  }
};

}  // namespace

void AddRate(CommandGroup& tool) {
  tool.Add<Rate>("rate", "Rate photos from 1 to 5");
}

}  // namespace vdsto
