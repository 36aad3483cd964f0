#pragma once
#include <sys/stat.h>

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <utility>

#include "tools/vdsto/upload/rate_limiter.h"

namespace vdsto {

/// A file of this computer on its way to a target. One thread uses it.
class OutgoingFile {
 public:
  /// Told the position up to which the target has the file, whenever that changes, and how many
  /// bytes were sent for that.
  using Arrival = std::function<void(uint64_t position, uint64_t sent)>;

  /// Throws UploadError: the file is gone or cannot be read.
  OutgoingFile(const std::string& path, RateLimiter& limiter, Arrival arrived);
  ~OutgoingFile();
  OutgoingFile(const OutgoingFile&) = delete;
  OutgoingFile& operator=(const OutgoingFile&) = delete;

  const std::string& Path() const { return path_; }
  uint64_t Size() const { return static_cast<uint64_t>(state_.st_size); }
  /// A short text that is another one when the file changes: of its size and time.
  std::string Stamp() const;

  /// What is sent next begins at this byte.
  void Begin(uint64_t position);
  /// The next bytes to send, as many as the limit of the rate allows at once; none at the end.
  /// Throws UploadError, also instead of the last bytes of a file that has changed since it was
  /// opened, and UploadStopped when the user wants to stop.
  size_t Read(std::span<char> buffer);
  /// The target has all that was read until now.
  void NoteArrival() { arrived_(position_, std::exchange(unnoted_, 0)); }
  /// Reads for a comparison: not limited, not counted. As many bytes as there are.
  size_t ReadAt(uint64_t position, std::span<char> buffer) const;

 private:
  void RequireUnchanged() const;
  [[noreturn]] void ThrowChanged() const;

  std::string path_;
  RateLimiter& limiter_;
  Arrival arrived_;
  int descriptor_;
  struct stat state_ {};
  uint64_t position_ = 0;
  uint64_t unnoted_ = 0;   // bytes read since the last arrival
  bool is_whole_ = false;  // all was read, and the file had not changed then
};

}  // namespace vdsto
