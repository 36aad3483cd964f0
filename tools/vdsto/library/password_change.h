#pragma once
#include <string>
#include <vector>

#include "tools/vdsto/library/import_lock.h"

namespace vdsto {

/// Throws ToolError (kRefused) while somebody uses the library.
void RequireUnused(const std::string& library_folder);

/// Puts the databases of a library under another password; an empty one is none. `old_password`
/// opens it, and nobody has it open. The databases are copied, the copies encrypted anew, and that
/// of the catalogue takes its file's place in one step: from then on the new password opens the
/// library, until then the old one does. Before the last password goes, UnsealImages has been
/// called. Throws ToolError, kRefused while somebody uses the library, and it is as it was then.
void ChangePassword(const std::string& library_folder, const std::string& old_password,
                    const std::string& new_password, const ImportLock& lock);

/// Ends what a change that was killed has left to do, or undoes what it had begun. `password` opens
/// the library.
void FinishPasswordChange(const std::string& library_folder, const std::string& password,
                          const ImportLock& lock);

/// Files in the folder that may show what the library had in it before it had a password.
std::vector<std::string> OlderPlainFiles(const std::string& library_folder);

}  // namespace vdsto
