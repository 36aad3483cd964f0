#include <algorithm>

#include "tools/vdsto/backup/backup_writer.h"
#include "tools/vdsto/backup/verify_backup.h"
#include "tools/vdsto/cli/backup_progress.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/import/interruption.h"
#include "tools/vdsto/library/finished_file.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(Others may use the library meanwhile; the backup is the library as it was at its beginning. Every
backup is whole by itself, but what has not changed is in DIR once for all of them. A backup that is
killed leaves the older ones as they are, and the next one goes on from what it had.

The originals of your pictures are no part of a library and of its backup: keep copies of them, too.
vdsto restore brings a backup back; docs/backup.md tells more.)";

Fact IdFact(const Generation& generation) {
  return {generation.id, generation.id};
}

class Modes {
 public:
  bool list = false;
  bool verify = false;
  bool prune = false;

  bool AreClear() const { return int{list} + int{verify} + int{prune} <= 1; }
};

struct Backup {
  std::string path;
  std::string id;
  int keep = 0;
  bool moved = false;
  Modes modes;

  void Declare(Command& command) {
    command.Word("DIR", path, "The folder of backups: one of its own, best on another disk")
        .NumberOption("--keep", "N", keep, 1, 1'000'000,
                      "Delete all but the newest N backups afterwards (else keep all)")
        .Flag("--list", modes.list, "Only list the backups that are there")
        .Flag("--verify", modes.verify, "Only read the backups and name what is damaged")
        .Flag("--prune", modes.prune, "Only delete all but the newest N; needs --keep")
        .Option("--generation", "ID", id, "With --verify: only that backup, as --list names it")
        .Flag("--moved", moved, "The library was in another folder when DIR was last used")
        .Notes(kNotes);
  }

  ExitCode Run(Invocation& invocation) const {
    if (!modes.AreClear() || (modes.prune && keep == 0))
      throw ToolError(ExitCode::kUsage, "one of --list, --verify and --prune --keep N is enough");
    if (modes.list) return List(invocation);
    if (modes.verify) return Verify(invocation);
    return modes.prune ? Prune(invocation) : Make(invocation);
  }

 private:
  ExitCode List(Invocation& invocation) const {
    BackupFolder folder(path);
    Table table({"backup", "time", "bytes", "new_bytes", "verdict"});
    for (const Generation& each : folder.Generations())
      table.Add({IdFact(each), TimeFact(static_cast<int32_t>(each.time)), SizeFact(each.Bytes()),
                 SizeFact(each.new_bytes), folder.IsWhole(each) ? "complete" : "pieces missing"});
    for (const std::string& each : folder.Unreadable())
      table.Add({Fact(Json(), Printable(each)), TimeFact(0), SizeFact(0), SizeFact(0),
                 "manifest damaged"});
    return invocation.Write(table);
  }

  ExitCode Prune(Invocation& invocation) const {
    BackupFolder folder(path);
    folder.Lock();
    const size_t deleted = folder.Keep(static_cast<size_t>(keep));
    Facts facts;
    return invocation.Write(facts.ForPrograms("deleted", deleted)
                                .ForPeople(Counted(deleted, "older backup") + " deleted, " +
                                           Counted(folder.Generations().size(), "backup") +
                                           " kept"));
  }

  ExitCode Make(Invocation& invocation) const {
    const LibraryOptions library = invocation.AskForLibrary();
    RequireLibrary(library.folder);
    BackupFolder folder(path, library.folder);
    RequireSameLibrary(folder, library.folder);
    const InterruptionGuard guard;
    const Generation made = [&] {
      BackupProgressBar bar(
          "what was copied is used by the next backup; older backups are as they were");
      try {
        return BackUp(library, folder, bar.Function());
      } catch (const ToolError& error) {
        if (error.Code() != ExitCode::kInterrupted) folder.Sweep();
        folder.Discard();
        throw;
      }
    }();
    const size_t deleted = keep > 0 ? folder.Keep(static_cast<size_t>(keep)) : 0;
    folder.Sweep();
    folder.Discard();
    invocation.Write(Told(made, deleted));
    return made.left_out.empty() ? ExitCode::kOk : ExitCode::kIncomplete;
  }

  /// Before a folder for backups is made.
  static void RequireLibrary(const std::string& folder) {
    if (!IdentityOf(folder + "/catalogue.vdb"))
      throw ToolError(ExitCode::kCannotOpen,
                      "no catalogue in " + Printable(folder) + ": name its folder with --library");
  }

  /// Backups of another library would be deleted by --keep.
  void RequireSameLibrary(BackupFolder& folder, const std::string& library_folder) const {
    const auto generations = folder.Generations();
    if (moved || generations.empty()) return;
    const std::string& before = generations.front().library;
    const std::string now = std::filesystem::absolute(library_folder).lexically_normal().string();
    const bool is_same = before == now || IdentityOf(before) == IdentityOf(library_folder);
    if (!is_same)
      throw ToolError(ExitCode::kRefused,
                      Printable(path) + " has the backups of the library in " + Printable(before) +
                          ": name another folder, or say --moved when it is the same library");
  }

  Answer Told(const Generation& made, size_t deleted) const {
    Facts facts;
    Json left_out = Json::array();
    for (const auto& [name, reason] : made.left_out) {
      left_out.push_back({{"name", name}, {"reason", reason}});
      facts.ForPeople(Printable(name) + " is not in the backup: " + Printable(reason));
    }
    std::string text = "Backup " + made.id + ": " + HumanSize(made.Bytes()) + ", " +
                       HumanSize(made.new_bytes) + " of it new";
    if (deleted > 0) text += "; " + Counted(deleted, "older backup") + " deleted";
    return facts.ForPrograms("backup", made.id)
        .ForPrograms("bytes", made.Bytes())
        .ForPrograms("new_bytes", made.new_bytes)
        .ForPrograms("deleted", deleted)
        .ForPrograms("left_out", std::move(left_out))
        .ForPeople(text);
  }

  ExitCode Verify(Invocation& invocation) const {
    BackupFolder folder(path);
    folder.Lock(false);
    std::vector<Generation> generations = folder.Generations();
    if (!id.empty()) generations = {folder.Find(id)};
    const InterruptionGuard guard;
    const BackupFaults faults = [&] {
      BackupProgressBar bar("nothing was changed");
      return VerifyBackup(folder, generations, bar.Function());
    }();
    const bool is_sound = faults.damages.empty() && folder.Unreadable().empty();
    if (generations.empty() && is_sound)
      throw ToolError(ExitCode::kNotFound, "no backups in " + Printable(path) + " yet");
    invocation.Write(TellFaults(generations, faults, folder.Unreadable()));
    return is_sound ? ExitCode::kOk : ExitCode::kDamaged;
  }

  static Facts TellFaults(const std::vector<Generation>& generations, const BackupFaults& faults,
                          const std::vector<std::string>& unreadable) {
    Facts facts;
    Json damaged = Json::array();
    for (const auto& [backup, file, missing, bad] : faults.damages) {
      damaged.push_back({{"backup", backup}, {"file", file}, {"missing", missing}, {"bad", bad}});
      facts.ForPeople(backup + " " + Printable(file) + ": " + Counted(missing, "piece") +
                      " missing, " + std::to_string(bad) + " damaged");
    }
    for (const std::string& each : unreadable)
      facts.ForPeople(Printable(each) + " is damaged: its backup is lost; delete the file");
    const size_t count = faults.sound.size();
    facts.ForPrograms("damaged", std::move(damaged))
        .ForPrograms("unreadable", unreadable)
        .ForPrograms("sound", faults.sound);
    facts.ForPeople(std::to_string(count) + " of " + Counted(generations.size(), "backup") +
                    (count == 1 ? " is sound" : " are sound") +
                    (count > 0 ? ", the newest " + faults.sound.front() : std::string()));
    if (faults.was_set_aside)
      facts.ForPeople(
          "The next vdsto backup writes the damaged pieces again, as far as the library "
          "still has them.");
    return facts;
  }
};

}  // namespace

void AddBackup(CommandGroup& tool) {
  tool.Add<Backup>("backup", "Back the library up into a folder, also while it is in use");
}

}  // namespace vdsto
