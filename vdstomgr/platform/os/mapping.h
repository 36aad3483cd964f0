#pragma once

#include <cstddef>
#include <cstdint>
#include <system_error>

#include "vdstomgr/platform/framework/types.h"

namespace vdstomgr::os {

/// How the system should keep the pages of a mapping. A wish: not every system can tell these
/// apart.
enum class Paging { plain, commit, reserve_uncached };

enum class FlushDepth {
  light,   ///< the system begins to write soon; nothing is waited for
  durable  ///< after the file's own Sync the device holds the bytes
};

/// Bytes of a file in memory, for reading and writing. The destructor ends it; what was written
/// stays written, and a killed process loses nothing of it.
class Mapping {
 public:
  virtual ~Mapping() = default;
  Mapping(const Mapping&) = delete;
  Mapping& operator=(const Mapping&) = delete;

  BYTE* Data() const { return data_; }
  std::size_t Size() const { return size_; }

  /// Takes what was written to `size` bytes from `offset` on, which must lie inside, towards the
  /// device.
  virtual std::error_code Flush(std::size_t offset, std::size_t size, FlushDepth depth) = 0;

 protected:
  Mapping(BYTE* data, std::size_t size) : data_(data), size_(size) {}
  void SetSize(std::size_t size) { size_ = size; }

 private:
  BYTE* data_;
  std::size_t size_;
};

/// Mappings begin at multiples of this many bytes of their file.
std::uint64_t MapGranularity();

}  // namespace vdstomgr::os
