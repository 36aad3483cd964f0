#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/import_round.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/picture/picture_probe.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(Running it again brings the catalogue up to date: unchanged files are passed over, changed ones
updated, missing thumbnails made. A file or folder that was renamed or moved is known by its contents and
keeps all that its photos have. A photo whose file is gone stays and is marked; one that the user moved in
the catalogue stays where it is, and one in the trash is left alone. A disk that is not mounted takes no
photo away. Names that begin with a dot are passed over; links to folders are followed
unless they lead into or above the imported tree. Folders without pictures are not mirrored. When some of the
folders cannot be read, the others are imported and the exit code is 9; 11 says that a file could not be read
or stored. An XMP file beside a picture (a.jpg.xmp, a.xmp) is read with it. Dates, places, ratings, titles,
descriptions and keywords, as tags, are taken over; what you change in the catalogue stays yours.)";

ExitCode CodeFor(const ImportSummary& summary) {
  const bool is_complete = summary.unreadable.empty() && summary.not_stored.empty();
  return is_complete ? ExitCode::kOk : ExitCode::kUnreadable;
}

struct Import {
  std::vector<std::string> folders;

  void Declare(Command& command) {
    command.Words("FOLDER", folders, "Folders to import").Notes(kNotes);
  }

  /// The library is made last, when it is sure that there is something to import.
  ExitCode Run(Invocation& invocation) const {
    const ImportRoots roots = CheckImportRoots(folders);
    const LibraryOptions options = invocation.AskForNewLibrary();
    InitialiseProbing();
    const ImportLock lock = invocation.LockOutImports();
    const ImportSummary summary = ImportInto(options, lock, roots, invocation.WantsJson());
    invocation.Write(Describe(summary));
    if (summary.interrupted) return ExitCode::kInterrupted;
    if (summary.unreadable_roots == 0) return CodeFor(summary);
    throw ToolError(ExitCode::kIncomplete, std::to_string(summary.unreadable_roots) + " of " +
                                               Counted(folders.size(), "folder") +
                                               " could not be imported");
  }
};

}  // namespace

void AddImport(CommandGroup& tool) {
  tool.Add<Import>("import", "Mirror folders of pictures into the catalogue");
}

}  // namespace vdsto
