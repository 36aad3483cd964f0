#include "vdstomgr/platform/os/mapping.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <limits>

#include "vdstomgr/platform/os/posix/system_call.h"

namespace vdstomgr::os {
namespace {

constexpr std::size_t kHugePage = std::size_t{2} << 20;
constexpr std::uint64_t kLeastRoom = std::uint64_t{1} << 30;

std::size_t RoundUp(std::size_t size, std::size_t unit) {
  return (size + unit - 1) / unit * unit;
}

std::size_t WholePages(std::size_t size) {
  return RoundUp(size, static_cast<std::size_t>(MapGranularity()));
}

/// Maps a part of a file at an address that is the process's to use.
bool MapAt(BYTE* address, std::size_t size, int descriptor, std::uint64_t offset) {
  return mmap(address, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, descriptor,
              static_cast<off_t>(offset)) != MAP_FAILED;
}

/// Addresses of the process that belong to one mapping, used or not.
class Room {
 public:
  /// Where addresses are plenty, room for the mapping to double, at a multiple of a huge page.
  static Room ToGrow(std::uint64_t size) {
    if (sizeof(std::size_t) < sizeof(std::uint64_t)) return {};
    const std::size_t usable = WholePages(static_cast<std::size_t>(size * 2 + kLeastRoom));
    Room room = Exactly(usable + kHugePage);
    if (room.start_ == nullptr) return room;
    const std::size_t misplaced = reinterpret_cast<std::uintptr_t>(room.start_) % kHugePage;
    room.data_ = room.start_ + (misplaced == 0 ? 0 : kHugePage - misplaced);
    return room;
  }

  static Room Exactly(std::uint64_t size) {
    void* const start = mmap(nullptr, static_cast<std::size_t>(size), PROT_NONE,
                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (start == MAP_FAILED) return {};
    Room room;
    room.start_ = room.data_ = static_cast<BYTE*>(start);
    room.size_ = WholePages(static_cast<std::size_t>(size));
    return room;
  }

  BYTE* Data() const { return data_; }
  std::size_t Size() const { return size_ - static_cast<std::size_t>(data_ - start_); }
  void GiveBack() const { munmap(start_, size_); }

 private:
  BYTE* start_ = nullptr;
  BYTE* data_ = nullptr;
  std::size_t size_ = 0;
};

class PosixMapping final : public Mapping {
 public:
  PosixMapping(const Room& room, std::size_t size)
      : Mapping(room.Data(), size), room_(room), fresh_(WholePages(size)) {}
  ~PosixMapping() override { room_.GiveBack(); }

  std::error_code Flush(std::size_t offset, std::size_t size, FlushDepth depth) override {
    const std::size_t into_page = offset % static_cast<std::size_t>(MapGranularity());
    const int flags = depth == FlushDepth::durable ? MS_SYNC : MS_ASYNC;
    const int result = msync(Data() + offset - into_page, size + into_page, flags);
    return result == 0 ? std::error_code() : LastError();
  }

  /// What a file gains is about to be filled from its beginning on: huge pages save most of the
  /// page faults. What was gained before is mapped anew without them, because a page of it that the
  /// system has dropped would be read back with all its neighbours.
  bool Extend(int descriptor, std::size_t size) {
    if (size > room_.Size()) return false;
    const std::size_t end = WholePages(Size());
    if (size > end) {
      if (!MapAt(Data() + fresh_, size - fresh_, descriptor, fresh_)) return false;
      (void)madvise(Data() + end, size - end, MADV_HUGEPAGE);
      fresh_ = end;
    }
    SetSize(size);
    return true;
  }

 private:
  Room room_;
  std::size_t fresh_;  ///< where what was gained last begins
};

}  // namespace

std::error_code MapPosixFile(int descriptor, std::uint64_t offset, std::uint64_t size,
                             std::unique_ptr<Mapping>& mapping) {
  if (size > std::numeric_limits<std::size_t>::max()) {
    return std::make_error_code(std::errc::not_enough_memory);
  }
  Room room;
  if (offset == 0) room = Room::ToGrow(size);
  if (room.Data() == nullptr) room = Room::Exactly(size);
  if (room.Data() == nullptr) return LastError();
  const auto bytes = static_cast<std::size_t>(size);
  if (!MapAt(room.Data(), bytes, descriptor, offset)) {
    const auto error = LastError();
    room.GiveBack();
    return error;
  }
  mapping = std::make_unique<PosixMapping>(room, bytes);
  return {};
}

bool ExtendPosixMapping(int descriptor, std::uint64_t size, Mapping& mapping) {
  return size <= std::numeric_limits<std::size_t>::max() &&
         static_cast<PosixMapping&>(mapping).Extend(descriptor, static_cast<std::size_t>(size));
}

std::uint64_t MapGranularity() {
  static const auto granularity = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
  return granularity;
}

}  // namespace vdstomgr::os
