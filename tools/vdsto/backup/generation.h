#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vdsto {

/// A file of a library as a backup has it: pieces of the same length, the last of which may be
/// shorter.
struct BackedUpFile {
  std::string name;
  uint64_t size = 0;
  uint64_t piece_size = 1;
  std::vector<std::string> pieces = {};  ///< digests

  uint64_t SizeOfPiece(size_t number) const {
    return number + 1 < pieces.size() ? piece_size : size - piece_size * (pieces.size() - 1);
  }
};

/// A library as it was at one time.
struct Generation {
  std::string id;       ///< "2026-11-21T23-50-00Z": ids sort as they were made
  std::string library;  ///< its folder, absolute
  int64_t time = 0;     ///< seconds since 1970
  uint64_t new_bytes = 0;
  std::vector<BackedUpFile> files = {};
  /// Names of files that could not be backed up, and why.
  std::vector<std::pair<std::string, std::string>> left_out = {};

  uint64_t Bytes() const;
};

/// The manifest: a text that names its own digest, so that damage shows.
std::string ManifestOf(const Generation& generation);
/// Nothing when the text is no manifest, or was changed.
std::optional<Generation> ReadManifest(const std::string& text);

/// "2026-11-21T23-50-00Z".
std::string GenerationId(int64_t time);

}  // namespace vdsto
