#pragma once
#include <cstdint>
#include <stdexcept>
#include <string>

namespace vdsto {

/// Why a file is not at the target: the negative statuses of its row in the queue, listed for users
/// in docs/uploading.md. The catalogue takes the first group for worth another attempt.
enum class UploadFault : int32_t {
  kServerFailed = -500,
  kUnreachable = -7103,
  kConnectionLost = -7104,
  kTimedOut = -7105,
  kHostUnknown = -7106,
  kBusy = -7107,
  kFileChanged = -7108,  ///< while it was sent
  kNotWhole = -7212,     ///< what lies at the target is not what was sent

  kFileGone = -7301,
  kFileUnreadable = -7302,
  kLoginRefused = -7303,
  kNotTrusted = -7304,  ///< the host's key or certificate
  kRefused = -7305,
  kNoSpace = -7306,
  kBadName = -7307,
  kTooLarge = -7308,
  kFolderGone = -7309,  ///< the target's own folder
};

bool IsWorthRetrying(UploadFault fault);
/// Will every other file fail in the same way?
bool ConcernsAllFiles(UploadFault fault);

/// Ends the upload of one file.
class UploadError : public std::runtime_error {
 public:
  UploadError(UploadFault fault, const std::string& message)
      : std::runtime_error(message), fault_(fault) {}
  UploadFault Fault() const { return fault_; }

 private:
  UploadFault fault_;
};

/// Ends the upload of one file because the user wants to stop.
struct UploadStopped {};

/// What `error` of a system call on the target's file says. Throws UploadError.
[[noreturn]] void ThrowTargetErrno(int error, const std::string& path);

}  // namespace vdsto
