#pragma once
#include <string>

namespace vdsto {

/// Where a password comes from. Never from the arguments, which every user of the machine can read.
struct PasswordSource {
  bool prompt = false;
  std::string file;
};

/// Asks on the terminal, reads the first line of the file, or takes $VDSTO_PASSWORD; empty when
/// there is none of them. A signal while it asks leaves the terminal as it was. Throws ToolError
/// when there is no terminal or no such file, and when nothing is typed.
std::string ReadPassword(const PasswordSource& source);

}  // namespace vdsto
