#include "tools/vdsto/backup/restore.h"

#include "tools/vdsto/cli/backup_progress.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/import/interruption.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(The library's folder is the one of --library. It appears whole or not at all. A library that is there
is replaced with --force only, and is kept beside it under another name, which you may delete. The
password stays what it was when the backup was made; restoring does not ask for it.)";

struct RestoreLibrary {
  std::string path;
  std::string id;
  bool force = false;

  void Declare(Command& command) {
    command.Word("DIR", path, "The folder of backups")
        .Option("--generation", "ID", id,
                "The backup, as vdsto backup --list names it, or its beginning (else the newest)")
        .Flag("-f,--force", force, "Put a library that is there aside")
        .Notes(kNotes);
  }

  ExitCode Run(Invocation& invocation) const {
    BackupFolder folder(path);
    folder.Lock(false);
    const Generation generation = folder.Find(id);
    const std::string library = invocation.LibraryFolder();
    const InterruptionGuard guard;
    const std::string kept = [&] {
      BackupProgressBar bar("nothing was restored");
      return Restore(folder, folder.Pieces(), generation, library, force, bar.Function());
    }();
    return invocation.Write(Told(generation, library, kept));
  }

 private:
  static Facts Told(const Generation& generation, const std::string& library,
                    const std::string& kept) {
    Facts facts;
    for (const auto& [name, reason] : generation.left_out)
      facts.ForPeople(Printable(name) + " is not in the backup: " + Printable(reason));
    facts.ForPrograms("backup", generation.id)
        .ForPrograms("library", library)
        .ForPrograms("kept", kept.empty() ? Json() : Json(kept))
        .ForPeople("Backup " + generation.id + " is restored in " + Printable(library));
    if (!kept.empty()) facts.ForPeople("What was there is kept in " + Printable(kept));
    return facts;
  }
};

}  // namespace

void AddRestore(CommandGroup& tool) {
  tool.Add<RestoreLibrary>("restore", "Bring a backup back as a library");
}

}  // namespace vdsto
