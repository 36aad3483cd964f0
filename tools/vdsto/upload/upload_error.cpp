#include "tools/vdsto/upload/upload_error.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

namespace vdsto {
namespace {

using enum UploadFault;

constexpr std::array kRetriable{kServerFailed, kUnreachable, kConnectionLost, kTimedOut,
                                kHostUnknown,  kBusy,        kFileChanged,    kNotWhole};
constexpr std::array kOfAllFiles{kUnreachable,  kTimedOut,   kHostUnknown, kConnectionLost,
                                 kLoginRefused, kNotTrusted, kNoSpace,     kFolderGone};

template <class List>
bool Has(const List& list, UploadFault fault) {
  return std::find(list.begin(), list.end(), fault) != list.end();
}

UploadFault FaultOf(int error) {
  switch (error) {
    case ENOSPC:
    case EDQUOT:
      return kNoSpace;
    case EACCES:
    case EPERM:
    case EROFS:
      return kRefused;
    case ENAMETOOLONG:
    case EILSEQ:
    case EINVAL:
      return kBadName;
    case EFBIG:
      return kTooLarge;
    default:
      return kServerFailed;
  }
}

}  // namespace

bool IsWorthRetrying(UploadFault fault) {
  return Has(kRetriable, fault);
}

bool ConcernsAllFiles(UploadFault fault) {
  return Has(kOfAllFiles, fault);
}

void ThrowTargetErrno(int error, const std::string& path) {
  throw UploadError(FaultOf(error), path + ": " + std::generic_category().message(error));
}

}  // namespace vdsto
