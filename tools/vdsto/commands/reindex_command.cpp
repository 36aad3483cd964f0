#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

struct Reindex {
  void Declare(Command& command) {
    command.Notes("Needed only when another program has changed names in the catalogue.");
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    const ImportLock lock = invocation.LockOutImports();
    int photos = 0, folders = 0;
    library.CallSearch([&](auto& copy) {
      copy.Make();
      photos = copy.Database().GetTotalNoOfFiles();
      folders = copy.Database().GetTotalNoOfFolders();
    });
    Facts facts;
    return invocation.Write(
        facts.ForPrograms("photos", photos)
            .ForPrograms("folders", folders)
            .ForPeople(Counted(static_cast<unsigned>(photos), "photo") + " can be searched"));
  }
};

}  // namespace

void AddReindex(CommandGroup& tool) {
  tool.Add<Reindex>("reindex", "Make the search database anew");
}

}  // namespace vdsto
