#include "tools/vdsto/picture/source_file.h"

#include <fcntl.h>
#include <openssl/evp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <memory>
#include <system_error>

namespace vdsto {
namespace {

constexpr uint64_t kTicksPerSecond = 10'000'000;
constexpr uint64_t kSecondsFrom1601To1970 = 11'644'473'600;

[[noreturn]] void ThrowErrno() {
  throw std::system_error(errno, std::generic_category());
}

class Md5Digest {
 public:
  Md5Digest() { EVP_DigestInit_ex(context_.get(), EVP_md5(), nullptr); }
  void Add(Bytes bytes) { EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()); }
  std::string Hex() {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned length = 0;
    EVP_DigestFinal_ex(context_.get(), digest.data(), &length);
    std::string hex;
    for (unsigned i = 0; i < length; ++i) {
      hex += "0123456789abcdef"[digest[i] >> 4];
      hex += "0123456789abcdef"[digest[i] & 15];
    }
    return hex;
  }

 private:
  std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context_{EVP_MD_CTX_new(),
                                                                   &EVP_MD_CTX_free};
};

}  // namespace

int32_t UnixTimeOf(uint64_t last_write) {
  const auto seconds = static_cast<int64_t>(last_write / kTicksPerSecond) -
                       static_cast<int64_t>(kSecondsFrom1601To1970);
  using Limits = std::numeric_limits<int32_t>;
  return seconds < Limits::min() || seconds > Limits::max() ? 0 : static_cast<int32_t>(seconds);
}

FileStamp StampFrom(const struct stat& status) {
  const auto seconds =
      static_cast<int64_t>(status.st_mtim.tv_sec) + static_cast<int64_t>(kSecondsFrom1601To1970);
  if (seconds < 0) return {static_cast<uint64_t>(status.st_size), 0};
  return {static_cast<uint64_t>(status.st_size),
          static_cast<uint64_t>(seconds) * kTicksPerSecond +
              static_cast<uint64_t>(status.st_mtim.tv_nsec) / 100};
}

SourceFile::SourceFile(std::string path)
    : path_(std::move(path)), descriptor_(open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
  if (descriptor_ < 0) ThrowErrno();
  try {
    struct stat status {};
    if (fstat(descriptor_, &status) != 0) ThrowErrno();
    if (!S_ISREG(status.st_mode))
      throw std::system_error(std::make_error_code(std::errc::invalid_argument));
    stamp_ = StampFrom(status);
    bytes_.resize(std::min<uint64_t>(stamp_.size, kHeadSize));
    bytes_.resize(ReadAt(bytes_, 0));
  } catch (...) {
    close(descriptor_);
    throw;
  }
}

SourceFile::~SourceFile() {
  close(descriptor_);
}

Bytes SourceFile::Head() const {
  return Bytes(bytes_).first(std::min(bytes_.size(), kHeadSize));
}

void SourceFile::ReadAll() {
  in_memory_ = stamp_.size <= kLargestInMemory;
  if (!in_memory_) return DigestInPieces();
  const size_t have = bytes_.size();
  bytes_.resize(stamp_.size);
  bytes_.resize(have + ReadAt(std::span(bytes_).subspan(have), have));
  Md5Digest digest;
  digest.Add(bytes_);
  md5_ = digest.Hex();
}

size_t SourceFile::ReadAt(std::span<std::byte> into, uint64_t offset) const {
  size_t done = 0;
  while (done < into.size()) {
    const auto got = pread(descriptor_, into.data() + done, into.size() - done,
                           static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) ThrowErrno();
    if (got == 0) break;
    done += static_cast<size_t>(got);
  }
  return done;
}

void SourceFile::DigestInPieces() {
  std::vector<std::byte> piece(1 << 20);
  Md5Digest digest;
  uint64_t offset = 0;
  while (const size_t got = ReadAt(piece, offset)) {
    digest.Add(Bytes(piece).first(got));
    offset += got;
  }
  md5_ = digest.Hex();
}

}  // namespace vdsto
