#include "vdstomgr/platform/os/mapping.h"

#include <sys/mman.h>
#include <unistd.h>

#include <limits>

#include "vdstomgr/platform/os/posix/system_call.h"

namespace vdstomgr::os {
namespace {

class PosixMapping final : public Mapping {
 public:
  PosixMapping(void* data, std::size_t size) : Mapping(static_cast<BYTE*>(data), size) {}
  ~PosixMapping() override { munmap(Data(), Size()); }

  std::error_code Flush(std::size_t offset, std::size_t size, FlushDepth depth) override {
    const std::size_t into_page = offset % static_cast<std::size_t>(MapGranularity());
    const int flags = depth == FlushDepth::durable ? MS_SYNC : MS_ASYNC;
    const int result = msync(Data() + offset - into_page, size + into_page, flags);
    return result == 0 ? std::error_code() : LastError();
  }
};

}  // namespace

std::error_code MapPosixFile(int descriptor, std::uint64_t offset, std::uint64_t size,
                             std::unique_ptr<Mapping>& mapping) {
  if (size > std::numeric_limits<std::size_t>::max()) {
    return std::make_error_code(std::errc::not_enough_memory);
  }
  const auto bytes = static_cast<std::size_t>(size);
  void* const data = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor,
                          static_cast<off_t>(offset));
  if (data == MAP_FAILED) return LastError();
  mapping = std::make_unique<PosixMapping>(data, bytes);
  return {};
}

std::uint64_t MapGranularity() {
  static const auto granularity = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
  return granularity;
}

}  // namespace vdstomgr::os
