#include <filesystem>
#include <iostream>

#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/import_round.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/import/folder_watch.h"
#include "tools/vdsto/import/interruption.h"
#include "tools/vdsto/picture/picture_probe.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(The folders are imported first, as by vdsto import, and then what changes in them, as soon as it has been
quiet for some seconds: a file that is still being copied waits. Each time that something came of it, the
words of vdsto import say what; --json writes an object a line. Between these times others can use and change the
library. A folder that is deleted, renamed or on a disk that is unmounted is watched again when it is back; its
photos stay. New folders are watched at once, links as an import follows them. The library's own folder is not
watched, and changes that other computers make on a network disk are not noticed. Ctrl-C ends it with exit
code 130, and the next start imports what it has missed.)";

void Complain(const std::string& message) {
  std::cerr << "vdsto: " << Printable(message) << std::endl;
}

void TellOfRoot(const std::string& root, bool is_there) {
  Complain(root + (is_there ? " is there again"
                            : " is no longer there; it is watched again when it is back"));
}

bool IsNews(const ImportSummary& summary) {
  return summary.added + summary.updated + summary.moved + summary.newly_gone > 0 ||
         summary.folders_created > 0 || summary.interrupted || !summary.unreadable.empty() ||
         !summary.not_stored.empty();
}

void CheckLibraryFolder(const std::string& library_folder, const ImportRoots& roots) {
  std::error_code ignored;
  for (const std::string& root : roots.folders) {
    if (std::filesystem::equivalent(root, library_folder, ignored))
      throw ToolError(ExitCode::kUsage,
                      Printable(root) +
                          " is the library's own folder, which changes with every "
                          "import: watch the folders with the pictures");
  }
}

/// Imports round by round.
class Rounds {
 public:
  Rounds(Invocation& invocation, const LibraryOptions& options, ImportRoots roots)
      : invocation_(invocation), options_(options), roots_(std::move(roots)) {}

  void First() {
    const size_t unreadable = roots_.unreadable.size();
    invocation_.WriteNow(Describe(Import()));
    if (unreadable > 0) Complain(Counted(unreadable, "folder") + " cannot be read or watched");
    roots_.unreadable.clear();
    std::cerr << "watching; Ctrl-C ends it" << std::endl;
  }

  /// False when the library cannot be used at the moment.
  bool Next(FolderWatch::Changes changes) {
    roots_.changed = std::move(changes.folders);
    roots_.unfinished = std::move(changes.unfinished);
    try {
      CheckCatalogue();
      if (const ImportSummary summary = Import(); IsNews(summary))
        invocation_.WriteNow(Describe(summary));
      complaint_.clear();
      return true;
    } catch (const ToolError& error) {
      const bool may_pass =
          error.Code() == ExitCode::kCannotOpen || error.Code() == ExitCode::kCatalogue;
      if (!may_pass) throw;
      const std::string complaint = error.what();
      if (complaint != complaint_) Complain(complaint + "; vdsto watch goes on trying");
      complaint_ = complaint;
      return false;
    }
  }

 private:
  ImportSummary Import() {
    const ImportLock lock = invocation_.LockOutImports();
    return ImportInto(options_, lock, roots_, invocation_.WantsJson());
  }

  /// A library that went away meanwhile, with its disk perhaps, is not made anew.
  void CheckCatalogue() const {
    std::error_code ignored;
    if (!std::filesystem::exists(Joined(options_.folder, "catalogue.vdb"), ignored))
      throw ToolError(ExitCode::kCannotOpen, "the library in " + options_.folder + " is gone");
  }

  Invocation& invocation_;
  const LibraryOptions options_;
  ImportRoots roots_;
  std::string complaint_;  // the last one, said once
};

struct Watch {
  std::vector<std::string> folders;
  int settle = 5;

  void Declare(Command& command) {
    command.Words("FOLDER", folders, "Folders to watch")
        .NumberOption("--settle", "SECONDS", settle, 1, 3600,
                      "So long must a file have been quiet before it is imported (5)")
        .Notes(kNotes);
  }

  /// The folders are watched from before their first import on, so that nothing is missed.
  ExitCode Run(Invocation& invocation) const {
    const ImportRoots roots = CheckImportRoots(folders);
    const LibraryOptions options = invocation.AskForNewLibrary();
    CheckLibraryFolder(options.folder, roots);
    InitialiseProbing();
    const InterruptionGuard guard;
    FolderWatch watch(roots.folders, options.folder, &TellOfRoot);
    Rounds rounds(invocation, options, roots);
    rounds.First();
    while (!IsInterrupted()) {
      const FolderWatch::Changes changes = watch.WaitForChanges(std::chrono::seconds(settle));
      if (changes.folders.empty() || rounds.Next(changes)) continue;
      for (const std::string& folder : changes.folders) watch.NoteChange(folder);
    }
    return ExitCode::kInterrupted;
  }
};

}  // namespace

void AddWatch(CommandGroup& tool) {
  tool.Add<Watch>("watch", "Import folders, and then what changes in them");
}

}  // namespace vdsto
