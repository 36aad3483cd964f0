#pragma once

#include <cerrno>
#include <cstdint>
#include <memory>
#include <system_error>

#include "vdstomgr/platform/os/mapping.h"

/// Shared by the sources of this folder.
namespace vdstomgr::os {

inline std::error_code LastError() {
  return {errno, std::system_category()};
}

/// Repeats a call that a signal interrupted.
template <class Call>
auto Uninterrupted(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

/// Maps a range that lies inside the open file. A mapping of its beginning has room to grow.
std::error_code MapPosixFile(int descriptor, std::uint64_t offset, std::uint64_t size,
                             std::unique_ptr<Mapping>& mapping);

/// Makes a mapping of the beginning of the open file, which is that long already, `size` bytes
/// long. False when there is no room behind it, and it is to be ended then.
bool ExtendPosixMapping(int descriptor, std::uint64_t size, Mapping& mapping);

}  // namespace vdstomgr::os
