#pragma once
#include <stdexcept>
#include <string>
#include <system_error>

namespace vdsto {

/// What the process answers; listed for users in `vdsto --help`.
enum class ExitCode {
  kOk = 0,
  kUnexpected = 1,
  kUsage = 2,
  kCannotOpen = 3,  ///< the library, its catalogue or its image store cannot be opened
  kWrongPassword = 4,
  kCatalogue = 5,    ///< reading or writing the open catalogue or image store failed
  kNotFound = 6,     ///< what was asked for is not there or cannot be read
  kDamaged = 7,      ///< something is wrong with the library (see vdsto check) or a backup
  kRefused = 8,      ///< not done, so that nothing is lost
  kIncomplete = 9,   ///< some of what was asked for could not be read or sent; the rest is done
  kTarget = 10,      ///< the target of an upload or backup is away, full or lets nobody in
  kUnreadable = 11,  ///< an import could not read or store some files; the rest is done
  kInterrupted = 130,
};

/// Ends a command with one line for the user and an exit code.
class ToolError : public std::runtime_error {
 public:
  ToolError(ExitCode code, const std::string& message, bool concerns_value = false)
      : std::runtime_error(message), code_(code), concerns_value_(concerns_value) {}
  ExitCode Code() const { return code_; }
  /// True when the catalogue refused a value and is otherwise in order.
  bool ConcernsValue() const { return concerns_value_; }

 private:
  ExitCode code_;
  bool concerns_value_;
};

/// Ends a command because the system does not let it use a file or folder, and says why.
[[noreturn]] void ThrowSystemError(const std::string& path, const std::error_code& error);
/// The same with an errno.
[[noreturn]] void ThrowErrno(const std::string& path, int error);

}  // namespace vdsto
