#include "bench/storage_peers.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace bench {

void SyncFile(const std::filesystem::path& path) {
  const int file = ::open(path.c_str(), O_RDWR);
  Require(file >= 0 && ::fsync(file) == 0 && ::close(file) == 0, "fsync");
}

std::uint64_t SumOf(const void* data, std::size_t length) {
  const auto* bytes = static_cast<const unsigned char*>(data);
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < length / sizeof sum; ++i) {
    std::uint64_t word;
    std::memcpy(&word, bytes + i * sizeof word, sizeof word);
    sum += word;
  }
  for (std::size_t i = length / sizeof sum * sizeof sum; i < length; ++i) sum += bytes[i];
  return sum;
}

void Require(bool done, const char* what) {
  if (done) return;
  std::fprintf(stderr, "bench: %s failed\n", what);
  std::abort();
}

}  // namespace bench
