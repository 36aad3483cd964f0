#pragma once
#include <string>

namespace vdsto {

/// Where a password comes from. Never from the arguments, which every user of the machine can read.
struct PasswordSource {
  bool prompt = false;
  std::string file;

  /// Did the user say that there is one, here or by $VDSTO_PASSWORD?
  bool IsNamed() const;
};

/// Asks on the terminal, reads the first line of the file, or takes $VDSTO_PASSWORD; empty only
/// when the user named none of them. A signal while it asks leaves the terminal as it was. Throws
/// ToolError when there is no terminal or no such file, and when what is named is empty: it must
/// never be taken for no password.
std::string ReadPassword(const PasswordSource& source, const std::string& question = "Password: ");

/// The same for a password that is new: one that is typed is asked for twice. Throws ToolError also
/// when the two differ, and for what could not be relied on: more than the places that count, a NUL
/// character, a text that is not in UTF-8.
std::string ReadNewPassword(const PasswordSource& source,
                            const std::string& question = "New password: ");

}  // namespace vdsto
