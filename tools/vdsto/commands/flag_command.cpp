#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/selection/catalogue_path.h"

namespace vdsto {
namespace {

constexpr int kLastFlag = 7;

constexpr const char* kNotes =
    "A photo has eight flags, numbered from 0 to 7. What they mean is up to who sets them.";

bool HasFlag(const PHOTOINFO& photo, int flag) {
  return (photo.byteFlag >> flag & 1) != 0;
}

template <bool on>
struct ChangeFlag {
  int flag = 0;
  PhotoWords photos;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Number("FLAG", flag, 0, kLastFlag, "The flag's number, 0 to 7")
        .Photos(photos)
        .Change(change);
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    const auto apply = [&](const CStringArray& guids) {
      library.Call([&](auto& catalogue) { return catalogue.SetFlag(guids, flag, on); });
    };
    return ChangePhotos(
        invocation, library, photos, change,
        {.participle = (on ? "flagged " : "without flag ") + std::to_string(flag),
         .is_done = [&](const PHOTOINFO& photo) { return HasFlag(photo, flag) == on; },
         .apply = apply});
  }
};

/// The numbers of a photo's flags: a list for programs, "0 3" for people.
Fact FlagsFact(const PHOTOINFO& photo) {
  Json list = Json::array();
  std::string text;
  for (int flag = 0; flag <= kLastFlag; ++flag) {
    if (!HasFlag(photo, flag)) continue;
    list.push_back(flag);
    text += (text.empty() ? "" : " ") + std::to_string(flag);
  }
  return {std::move(list), text.empty() ? "-" : text};
}

struct FlagShow {
  PhotoWords photos;

  void Declare(Command& command) { command.Photos(photos); }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    CataloguePath paths(library);
    Json list = Json::array();
    Table table({"flags", "name"});
    for (const CString& guid : SelectPhotos(library, photos)) {
      const auto photo = library.Photo(guid.Str());
      if (!photo) continue;  // deleted meanwhile
      const std::string name = paths.NameOf(*photo);
      const Fact flags = FlagsFact(*photo);
      list.push_back({{"guid", photo->szGUID},
                      {"path", name},
                      {"flags", photo->byteFlag},
                      {"set", flags.json}});
      table.Add({flags, name});
    }
    return invocation.Write({std::move(list), table.Text()});
  }
};

}  // namespace

void AddFlag(CommandGroup& tool) {
  CommandGroup flag = tool.AddGroup("flag", "Set and clear the flags of photos", kNotes);
  flag.Add<ChangeFlag<true>>("set", "Set a flag of photos");
  flag.Add<ChangeFlag<false>>("clear", "Clear a flag of photos");
  flag.Add<FlagShow>("show", "Show which flags photos have");
}

}  // namespace vdsto
