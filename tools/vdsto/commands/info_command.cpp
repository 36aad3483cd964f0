#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/cli/photo_text.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/selection/catalogue_path.h"

namespace vdsto {
namespace {

constexpr size_t kLabelColumns = 20;

struct Info {
  std::string photo;

  void Declare(Command& command) { command.Photo(photo); }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    CataloguePath paths(library);
    const PHOTOINFO info = paths.Photo(photo);
    const Json fields = PhotoAsJson(info, paths.NameOf(info.dwFolderID));
    Facts facts(kLabelColumns);
    for (const auto& [key, value] : fields.items()) facts.Add(key, value);
    return invocation.Write(facts);
  }
};

}  // namespace

void AddInfo(CommandGroup& tool) {
  tool.Add<Info>("info", "Show everything about one photo");
}

}  // namespace vdsto
