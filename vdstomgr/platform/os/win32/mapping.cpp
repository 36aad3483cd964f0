#include "vdstomgr/platform/os/mapping.h"

#include <limits>

#include "vdstomgr/platform/os/win32/system_call.h"

namespace vdstomgr::os {
namespace {

class WindowsMapping final : public Mapping {
 public:
  WindowsMapping(void* data, std::size_t size) : Mapping(static_cast<BYTE*>(data), size) {}
  ~WindowsMapping() override { UnmapViewOfFile(Data()); }

  /// The system's call is the light flush, and all that the durable one needs before the file's
  /// own Sync. It takes a size of 0 for everything.
  std::error_code Flush(std::size_t offset, std::size_t size, FlushDepth) override {
    return size == 0 ? std::error_code() : ErrorUnless(FlushViewOfFile(Data() + offset, size));
  }
};

DWORD SectionAttributes(Paging paging) {
  switch (paging) {
    case Paging::reserve_uncached:
      return SEC_NOCACHE | SEC_RESERVE;
    case Paging::commit:
      return SEC_COMMIT;
    case Paging::plain:
      break;
  }
  return 0;
}

}  // namespace

/// The section lives on in its view.
std::error_code MapWindowsFile(HANDLE file, std::uint64_t offset, std::uint64_t size, Paging paging,
                               std::unique_ptr<Mapping>& mapping) {
  if (size > std::numeric_limits<std::size_t>::max()) {
    return std::make_error_code(std::errc::not_enough_memory);
  }
  const auto bytes = static_cast<std::size_t>(size);
  const std::uint64_t end = offset + size;
  const Handle section(CreateFileMappingW(file, nullptr, PAGE_READWRITE | SectionAttributes(paging),
                                          HighHalf(end), LowHalf(end), nullptr));
  if (section == nullptr) return LastError();
  void* const data = MapViewOfFileEx(section.get(), FILE_MAP_ALL_ACCESS, HighHalf(offset),
                                     LowHalf(offset), bytes, nullptr);
  if (data == nullptr) return LastError();
  mapping = std::make_unique<WindowsMapping>(data, bytes);
  return {};
}

std::uint64_t MapGranularity() {
  static const std::uint64_t granularity = [] {
    SYSTEM_INFO system{};
    GetSystemInfo(&system);
    return system.dwAllocationGranularity;
  }();
  return granularity;
}

}  // namespace vdstomgr::os
