#include "tools/vdsto/cli/invocation.h"

#include <iostream>

#include "tools/vdsto/import/interruption.h"
#include "tools/vdsto/library/finished_file.h"

namespace vdsto {

std::string Invocation::LibraryFolder() const {
  return options_.library_folder.empty() ? DefaultLibraryFolder() : options_.library_folder;
}

LibraryOptions Invocation::AskForLibrary() const {
  return {LibraryFolder(), ReadPassword(options_.password)};
}

/// A file of any kind at the catalogue's place is opened, not replaced: its password is no new one.
LibraryOptions Invocation::AskForNewLibrary() const {
  if (IdentityOf(LibraryFolder() + "/catalogue.vdb")) return AskForLibrary();
  return {LibraryFolder(), ReadNewPassword(options_.password)};
}

ImportLock Invocation::LockOutImports() const {
  return ImportLock(LibraryFolder(), [told = false]() mutable {
    if (!told) std::cerr << "waiting for an import into this library" << std::endl;
    told = true;
    if (IsInterrupted()) throw ToolError(ExitCode::kInterrupted, "interrupted");
  });
}

ExitCode Invocation::Write(const Answer& answer) {
  out_ << (WantsJson() ? JsonText(answer.json) : answer.text);
  return ExitCode::kOk;
}

void Invocation::WriteNow(const Answer& answer) {
  out_ << (WantsJson() ? JsonLine(answer.json) : answer.text) << std::flush;
}

ExitCode Invocation::WriteBytes(std::span<const uint8_t> bytes) {
  out_.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  return ExitCode::kOk;
}

}  // namespace vdsto
