#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

struct stat;

namespace vdsto {

using Bytes = std::span<const std::byte>;

/// Size and last-write time of a file: what tells a changed file from an unchanged one.
struct FileStamp {
  uint64_t size = 0;
  uint64_t last_write = 0;  ///< FILETIME: 100 ns steps since 1601-01-01 UTC

  bool operator==(const FileStamp&) const = default;
};

/// Seconds since 1970 of a FILETIME, as the catalogue's dates hold them; 0 when they cannot, and
/// for 1970 itself, which archives give to files without a time.
int32_t UnixTimeOf(uint64_t last_write);

/// A picture file opened for probing. Files up to kLargestInMemory are read once, into memory;
/// larger ones are read through `path` by whoever needs them, so that a few huge scans cannot fill
/// the machine.
class SourceFile {
 public:
  static constexpr uint64_t kLargestInMemory = 96ull << 20;
  static constexpr size_t kHeadSize = 4096;

  /// Opens `path` and reads its first bytes. Throws std::system_error when it cannot be opened or
  /// is no regular file.
  explicit SourceFile(std::string path);
  ~SourceFile();
  SourceFile(const SourceFile&) = delete;
  SourceFile& operator=(const SourceFile&) = delete;

  const std::string& Path() const { return path_; }
  /// Taken from the open file, before its contents are read.
  const FileStamp& Stamp() const { return stamp_; }
  /// The first kHeadSize bytes, or fewer.
  Bytes Head() const;
  /// Reads the rest. Throws std::system_error on a read error.
  void ReadAll();
  bool InMemory() const { return in_memory_; }
  /// The whole contents, after ReadAll, when InMemory().
  Bytes Contents() const { return bytes_; }
  /// MD5 of the whole contents as 32 lower-case hex digits, after ReadAll.
  const std::string& Md5() const { return md5_; }

  /// The number of bytes that were there to be read. Throws std::system_error on a read error.
  size_t ReadAt(std::span<std::byte> into, uint64_t offset) const;

 private:
  void DigestInPieces();

  std::string path_;
  int descriptor_;
  FileStamp stamp_;
  std::vector<std::byte> bytes_;
  std::string md5_;
  bool in_memory_ = false;
};

/// The stamp in what the system says about a file.
FileStamp StampFrom(const struct stat& status);

}  // namespace vdsto
