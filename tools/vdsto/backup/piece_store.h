#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <unordered_set>
#include <vector>

namespace vdsto {

using PieceBytes = std::span<const unsigned char>;
using DigestSet = std::unordered_set<std::string>;

/// The SHA-256 of some bytes as 64 lower-case hex digits.
std::string Sha256(PieceBytes bytes);

/// A system call that failed in a backup's folder, as one line: full disks and missing rights say
/// what leads out.
[[noreturn]] void ThrowBackupError(const std::string& path, int error);

/// What is wrong with a piece, or nothing.
enum class PieceFault { kNone, kMissing, kDamaged };

/// Pieces of files, each under the name of its digest: what is in two backups is there once. A
/// piece gets its name when it is written; the device may hold it later.
class PieceStore {
 public:
  /// `folder` is the backup's.
  explicit PieceStore(const std::string& folder);

  /// Pieces that a finished backup names are believed when their length is right. Others that are
  /// there, which a killed backup has left, are read before they are believed.
  void Trust(DigestSet digests) { trusted_ = std::move(digests); }
  /// Keeps the bytes and answers their digest. Throws ToolError.
  std::string Add(PieceBytes bytes);
  /// The bytes that Add had to write.
  uint64_t NewBytes() const { return new_bytes_; }

  bool IsThere(const std::string& digest, uint64_t size) const;
  /// Reads a piece and compares it with its digest; `bytes` is what was read.
  PieceFault Read(const std::string& digest, uint64_t size,
                  std::vector<unsigned char>& bytes) const;
  /// Gives a damaged piece another name, so that the next backup writes it again. False when the
  /// folder cannot be written.
  bool SetAside(const std::string& digest) const;

  /// Deletes the pieces that are not in `named`, and nothing else.
  void Sweep(const DigestSet& named) const;

 private:
  std::string PathOf(const std::string& digest) const;
  void Write(const std::string& path, PieceBytes bytes) const;

  std::string folder_;
  std::string unfinished_;
  DigestSet trusted_;
  uint64_t new_bytes_ = 0;
};

}  // namespace vdsto
