#pragma once
#include <sys/types.h>

#include <optional>
#include <span>
#include <string>

#include "tools/vdsto/library/library.h"

namespace vdsto {

/// A file that the user wants a command to write. It appears whole or not at all, and never in the
/// place of a picture of the catalogue or a file of the library.
class OutputFile {
 public:
  /// Throws ToolError for what no file can be written to: a folder, a link to nowhere, a disk.
  explicit OutputFile(const std::string& path);

  /// Throws ToolError when something is in its place, or a picture's original belongs there.
  /// `force` lets other files be replaced.
  void RequireFree(Library& library, bool force) const;
  /// Writes the file beside its place and moves it there; what has come there since is not
  /// replaced. A device or a pipe is written as it is. Throws ToolError, and what was there before
  /// is whole.
  void Write(std::span<const uint8_t> contents) const;

 private:
  void Resolve();
  void WriteUnfinished(const std::string& unfinished, std::span<const uint8_t> contents) const;
  bool Publish(const std::string& unfinished) const;

  std::string path_;    // as the user wrote it
  std::string folder_;  // absolute, without links, as is the name in it
  std::string name_;
  std::optional<mode_t> mode_;  // of what is there
};

}  // namespace vdsto
