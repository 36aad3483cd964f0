#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <vector>

#include "bench/storage_peers.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

/// A file for each record, named by its key, spread over 256 folders by the key's first two
/// characters.
class PlainFiles : public BlobStore {
 public:
  explicit PlainFiles(const fs::path& folder) : folder_(folder.string() + "/") {
    constexpr char kDigits[] = "0123456789ABCDEF";
    for (int i = 0; i < 256; ++i) {
      fs::create_directories(folder_ + kDigits[i / 16] + kDigits[i % 16]);
    }
  }

  void Put(const char* key, Blob blob) override {
    const int file = ::open(PathOf(key).c_str(), O_WRONLY | O_CREAT | O_EXCL, 0644);
    Require(file >= 0, "open");
    Require(::write(file, blob.data(), blob.size()) == ssize_t(blob.size()), "write");
    Require(::close(file) == 0, "close");
  }

  void BulkPut(const char* key, Blob blob) override { Put(key, blob); }
  void FinishBulk() override {}

  std::uint64_t Get(const char* key) override {
    const int file = ::open(PathOf(key).c_str(), O_RDONLY);
    if (file < 0) return 0;
    struct stat status;
    Require(::fstat(file, &status) == 0, "fstat");
    const auto size = std::size_t(status.st_size);
    if (buffer_.size() < size) buffer_.resize(size);
    Require(::read(file, buffer_.data(), size) == ssize_t(size), "read");
    ::close(file);
    return SumOf(buffer_.data(), size);
  }

  void Remove(const char* key) override { Require(::unlink(PathOf(key).c_str()) == 0, "unlink"); }

  bool Compact() override { return false; }

 private:
  std::string PathOf(const char* key) const {
    return folder_ + std::string(key, 2) + "/" + std::string(key, kKeyLength);
  }

  std::string folder_;
  std::vector<unsigned char> buffer_;
};

}  // namespace

std::unique_ptr<BlobStore> OpenPlainFiles(const fs::path& folder) {
  return std::make_unique<PlainFiles>(folder);
}

}  // namespace bench
