#include "bench/storage_growing_map.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include "bench/storage_peers.h"

namespace bench {
namespace {

constexpr std::size_t kPage = 4096;
constexpr std::size_t kStep = std::size_t{100} << 20;

}  // namespace

GrowingMap::GrowingMap(const std::filesystem::path& path)
    : file_(::open(path.c_str(), O_RDWR | O_CREAT, 0644)) {
  Require(file_ >= 0, "open");
  const std::uintmax_t size = std::filesystem::file_size(path);
  Extend(size == 0 ? kPage : std::size_t(size));
}

GrowingMap::~GrowingMap() {
  ::munmap(data_, size_);
  ::close(file_);
}

void GrowingMap::Grow(std::size_t size) {
  Extend((size + kStep - 1) / kStep * kStep);
}

void GrowingMap::Extend(std::size_t grown) {
  Require(::posix_fallocate(file_, off_t(size_), off_t(grown - size_)) == 0, "posix_fallocate");
  void* data = data_ == nullptr
                   ? ::mmap(nullptr, grown, PROT_READ | PROT_WRITE, MAP_SHARED, file_, 0)
                   : ::mremap(data_, size_, grown, MREMAP_MAYMOVE);
  Require(data != MAP_FAILED, "mmap");
  data_ = static_cast<unsigned char*>(data);
  size_ = grown;
}

}  // namespace bench
