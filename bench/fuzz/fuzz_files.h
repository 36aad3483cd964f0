#pragma once

#include <filesystem>
#include <span>
#include <string>

#include "bench/fuzz/fuzz_input.h"

namespace fuzz {

/// A folder of this process's own below TMPDIR (best in memory), and the system's files in force
/// with two changes: growing leaves holes instead of reserving space, so that a step of 100 MiB
/// costs nothing, and fails at 512 MiB; and whoever touches the last page of a mapping behind the
/// end of the file is caught by the address sanitizer. Reports go nowhere.
class Playground {
 public:
  /// The one of this process.
  static const Playground& Get();

  /// Leaves no file in the folder.
  void Clear() const;
  std::string Path(const char* name) const { return (folder_ / name).string(); }
  void Write(const char* name, std::span<const BYTE> content) const;
  /// The first `size` bytes of a file, or all of a shorter one.
  Bytes Read(const char* name, std::size_t size) const;

 private:
  Playground();
  ~Playground();

  std::filesystem::path folder_;
};

/// Ends the process with a message, which the fuzzer takes for a finding, unless `holds`.
void Require(bool holds, const char* what);

/// Reads every byte, so that the sanitizer sees each; answers their sum.
unsigned Touch(const void* data, std::size_t size);

}  // namespace fuzz
