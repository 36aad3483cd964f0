#include <iostream>

#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/database_password.h"
#include "tools/vdsto/library/image_key.h"
#include "tools/vdsto/library/password_change.h"
#include "tools/vdsto/library/store_repair.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(The old password is asked for, or taken from --password-file or $VDSTO_PASSWORD; a new one that is
typed is asked for twice. When this is interrupted, either the old password opens the library or the
new one. It needs the library for itself, and space for a second copy of the catalogue and, where
thumbnails are encrypted or decrypted, of the image store.

The thumbnails have a key of their own, which stays when the password changes. Older backups, and what
vdsto restore has put aside, keep the password that they had. Nobody can open a library whose password
is forgotten. docs/passwords.md says what a password does not hide.)";

void Tell(const std::vector<std::string>& news) {
  for (const std::string& each : news) std::cerr << "vdsto: " << each << std::endl;
}

struct Password {
  std::string file;
  bool remove = false;

  void Declare(Command& command) {
    command
        .Option("--new-password-file", "FILE", file,
                "Read the new password from the file's first line (else it is asked for)")
        .Flag("--remove", remove, "Take the password away: everything is readable then")
        .Notes(kNotes);
  }

  ExitCode Run(Invocation& invocation) const {
    if (remove && !file.empty())
      throw ToolError(ExitCode::kUsage, "--remove takes no new password");
    const std::string folder = invocation.LibraryFolder();
    const std::string old_password = OldPassword(invocation);
    { const Library proof({folder, old_password}); }
    const std::string new_password = NewPassword(old_password);
    const ImportLock lock(folder, [] {
      throw ToolError(ExitCode::kRefused,
                      "an import works on this library: change the password when it has ended");
    });
    FinishPasswordChange(folder, old_password, lock);
    Tell(PrepareImageStore(folder, lock));
    RequireUnused(folder);
    if (remove) UnsealImages(Library({folder, old_password}), lock);
    ChangePassword(folder, old_password, new_password, lock);
    return Finish(invocation, old_password, {folder, new_password}, lock);
  }

 private:
  static std::string OldPassword(const Invocation& invocation) {
    const PasswordSource& source = invocation.Password();
    const bool is_plain = IsPlainDatabase(Joined(invocation.LibraryFolder(), "catalogue.vdb"));
    if (is_plain && !source.IsNamed()) return {};
    return ReadPassword({source.prompt || !source.IsNamed(), source.file}, "Old password: ");
  }

  std::string NewPassword(const std::string& old_password) const {
    if (remove && old_password.empty())
      throw ToolError(ExitCode::kUsage, "the library has no password");
    if (remove) return {};
    const std::string password = ReadNewPassword({file.empty(), file});
    if (password == CountingPassword(old_password))
      throw ToolError(ExitCode::kUsage, "that is the password already: nothing was changed");
    return password;
  }

  /// The password is changed; what is left to do, the next import does when this is interrupted.
  static ExitCode Finish(Invocation& invocation, const std::string& old_password,
                         const LibraryOptions& options, const ImportLock& lock) {
    Library library(options);
    Tell(PrepareSeal(library, lock));
    library.PrepareSearch();
    const bool is_removed = options.password.empty();
    const char* what = is_removed ? "removed" : old_password.empty() ? "set" : "changed";
    Facts facts;
    facts.ForPrograms("password", what)
        .ForPeople("The password of " + Printable(options.folder) + " is " + what + ".");
    if (is_removed) return invocation.Write(facts);
    for (const std::string& path : OlderPlainFiles(options.folder))
      facts.ForPeople(Printable(path) + " may be older and is not encrypted: delete it.");
    return invocation.Write(facts.ForPeople("Older backups keep the password that they had."));
  }
};

}  // namespace

void AddPassword(CommandGroup& tool) {
  tool.Add<Password>("password", "Set, change or remove the library's password");
}

}  // namespace vdsto
