#pragma once
#include <cstdint>
#include <ostream>
#include <span>
#include <string>

#include "tools/vdsto/cli/answer.h"
#include "tools/vdsto/cli/password.h"
#include "tools/vdsto/library/import_lock.h"
#include "tools/vdsto/library/library.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {

/// What the user may say with every command.
struct GlobalOptions {
  std::string library_folder;  ///< empty: the default one
  PasswordSource password;
  bool json = false;
};

/// One run of one command: how it comes to its library, and how it speaks to the user.
class Invocation {
 public:
  Invocation(const GlobalOptions& options, std::ostream& out) : options_(options), out_(out) {}

  /// Throws ToolError when there is none to be had.
  std::string LibraryFolder() const;
  /// The same and the password, which it asks for when the user wants to be asked.
  LibraryOptions AskForLibrary() const;
  /// The same for a command that makes the library when it is not there: a password is new then.
  LibraryOptions AskForNewLibrary() const;
  /// Where the library's password comes from.
  const PasswordSource& Password() const { return options_.password; }
  /// Opens the library, which must be there, to change it. Throws ToolError, also when it is
  /// read-only.
  Library OpenLibrary() const { return Library(AskForLibrary(), Use::kChanging); }
  /// The same to read it only.
  Library OpenLibraryToRead() const { return Library(AskForLibrary(), Use::kReading); }
  /// Waits, and says so, until no import works on the library, and keeps others out as long as the
  /// lock lives. Makes the library's folder. Throws ToolError when the user asks to stop meanwhile.
  ImportLock LockOutImports() const;

  bool WantsJson() const { return options_.json; }
  /// Writes the answer in the form that the user wants; kOk, for the command to return.
  ExitCode Write(const Answer& answer);
  /// Writes one of many answers at once, for programs on a line.
  void WriteNow(const Answer& answer);
  /// Writes an answer that is no text.
  ExitCode WriteBytes(std::span<const uint8_t> bytes);

 private:
  const GlobalOptions& options_;
  std::ostream& out_;
};

}  // namespace vdsto
