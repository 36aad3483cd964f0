#include "vdstomgr/platform/os/file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <limits>

#include "vdstomgr/platform/os/posix/system_call.h"

namespace vdstomgr::os {
namespace {

bool IsOffset(std::uint64_t offset, std::uint64_t size) {
  constexpr std::uint64_t kLargest = std::numeric_limits<off_t>::max();
  return offset <= kLargest && size <= kLargest - offset;
}

/// Whether the process may write a file that long: the system would answer with a signal.
bool IsPermittedSize(std::uint64_t size) {
  rlimit limit{};
  return getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY ||
         size <= limit.rlim_cur;
}

std::error_code Truncate(int descriptor, std::uint64_t size) {
  const auto length = static_cast<off_t>(size);
  return Uninterrupted([&] { return ftruncate(descriptor, length); }) == 0 ? std::error_code()
                                                                           : LastError();
}

/// Whether a path leads to a file.
bool IsNamed(const std::string& path, const struct stat& file) {
  struct stat named {};
  return stat(path.c_str(), &named) == 0 && named.st_dev == file.st_dev &&
         named.st_ino == file.st_ino;
}

/// The calls that both kinds of file have.
template <class Interface>
class PosixFile : public Interface {
 public:
  explicit PosixFile(int descriptor) : descriptor_(descriptor) {}
  ~PosixFile() override { PosixFile::Close(); }

  std::error_code ReadAt(std::uint64_t offset, void* buffer, std::size_t size,
                         std::size_t& count) override {
    count = 0;
    if (!IsOffset(offset, size)) return std::make_error_code(std::errc::invalid_argument);
    while (count < size) {
      const auto step = Uninterrupted([&] {
        return pread(descriptor_, static_cast<char*>(buffer) + count, size - count,
                     static_cast<off_t>(offset + count));
      });
      if (step < 0) return LastError();
      if (step == 0) break;
      count += static_cast<std::size_t>(step);
    }
    return {};
  }

  std::error_code WriteAt(std::uint64_t offset, const void* data, std::size_t size) override {
    if (!IsOffset(offset, size)) return std::make_error_code(std::errc::file_too_large);
    for (std::size_t done = 0; done < size;) {
      const auto step = Uninterrupted([&] {
        return pwrite(descriptor_, static_cast<const char*>(data) + done, size - done,
                      static_cast<off_t>(offset + done));
      });
      if (step < 0) return LastError();
      done += static_cast<std::size_t>(step);
    }
    return {};
  }

  std::error_code Size(std::uint64_t& size) override {
    struct stat status {};
    if (fstat(descriptor_, &status) != 0) return LastError();
    size = static_cast<std::uint64_t>(status.st_size);
    return {};
  }

  /// Not repeated after a signal: the descriptor is gone either way and may be another file's.
  std::error_code Close() override {
    if (descriptor_ < 0) return {EBADF, std::system_category()};
    const int result = close(descriptor_);
    descriptor_ = -1;
    return result == 0 || errno == EINTR ? std::error_code() : LastError();
  }

 protected:
  int Descriptor() const { return descriptor_; }

 private:
  int descriptor_;
};

class PosixExclusiveFile final : public PosixFile<ExclusiveFile> {
 public:
  PosixExclusiveFile(int descriptor, const std::string& path)
      : PosixFile(descriptor), path_(path) {}

  std::error_code Delete() override {
    struct stat status {};
    if (fstat(Descriptor(), &status) != 0) return LastError();
    if (!IsNamed(path_, status)) return std::make_error_code(std::errc::no_such_file_or_directory);
    return unlink(path_.c_str()) == 0 ? std::error_code() : LastError();
  }

  std::error_code SetSize(std::uint64_t size) override {
    std::uint64_t old_size = 0;
    if (const auto error = Size(old_size)) return error;
    const bool can_be = size <= old_size || (IsOffset(0, size) && IsPermittedSize(size));
    return can_be ? Truncate(Descriptor(), size) : std::make_error_code(std::errc::file_too_large);
  }

  std::error_code Reserve(std::uint64_t offset, std::uint64_t size) override {
    if (!IsOffset(offset, size)) return std::make_error_code(std::errc::file_too_large);
    int error = EINTR;
    while (error == EINTR) {
      error = posix_fallocate(Descriptor(), static_cast<off_t>(offset), static_cast<off_t>(size));
    }
    return {error, std::system_category()};
  }

  std::error_code Grow(std::uint64_t size, std::unique_ptr<Mapping>& mapping) override {
    if (const auto error = SetSize(size)) return error;
    if (mapping != nullptr && !ExtendPosixMapping(Descriptor(), size, *mapping)) mapping.reset();
    return {};
  }

  std::error_code Map(std::uint64_t offset, std::uint64_t size, Paging,
                      std::unique_ptr<Mapping>& mapping) override {
    mapping.reset();
    std::uint64_t file_size = 0;
    if (const auto error = Size(file_size)) return error;
    if (size == 0 || offset > file_size || size > file_size - offset) {
      return std::make_error_code(std::errc::invalid_argument);
    }
    return MapPosixFile(Descriptor(), offset, size, mapping);
  }

  std::error_code Sync() override {
    return Uninterrupted([&] { return fdatasync(Descriptor()); }) == 0 ? std::error_code()
                                                                       : LastError();
  }

 private:
  std::string path_;
};

int FlagsOf(OpenMode mode) {
  switch (mode) {
    case OpenMode::create:
      return O_RDWR | O_CREAT;
    case OpenMode::read_write:
      return O_RDWR;
    case OpenMode::read:
      break;
  }
  return O_RDONLY;
}

/// Mapped pages are the system's cache whatever is asked: unbuffered cannot be had.
int FlagsOf(Caching caching) {
  return caching == Caching::normal ? O_RDWR : O_RDWR | O_DSYNC;
}

/// Claims a file that was just opened. `file` owns the descriptor from the start. Its owner until
/// now may have deleted or renamed it since the opening.
std::error_code Claim(int descriptor, const std::string& path,
                      std::unique_ptr<ExclusiveFile>& file) {
  if (descriptor < 0) return LastError();
  auto opened = std::make_unique<PosixExclusiveFile>(descriptor, path);
  struct stat status {};
  if (fstat(descriptor, &status) != 0) return LastError();
  if (!S_ISREG(status.st_mode)) return std::make_error_code(std::errc::invalid_argument);
  if (Uninterrupted([&] { return flock(descriptor, LOCK_EX | LOCK_NB); }) != 0) return LastError();
  if (!IsNamed(path, status)) return std::make_error_code(std::errc::operation_would_block);
  (void)posix_fadvise(descriptor, 0, 0, POSIX_FADV_RANDOM);
  file = std::move(opened);
  return {};
}

/// Writers without a claim keep those with one out, and are kept out by them. Where the file system
/// has no locks nobody has a claim.
std::error_code ShareWriting(int descriptor) {
  const int result = Uninterrupted([&] { return flock(descriptor, LOCK_SH | LOCK_NB); });
  return result != 0 && errno == EWOULDBLOCK ? LastError() : std::error_code();
}

std::string FolderOf(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

NameKind KindOf(mode_t mode) {
  if (S_ISREG(mode)) return NameKind::file;
  return S_ISDIR(mode) ? NameKind::folder : NameKind::other;
}

class PosixFileSystem final : public FileSystem {
 public:
  std::error_code Open(const std::string& path, OpenMode mode,
                       std::unique_ptr<File>& file) override {
    file.reset();
    const int descriptor =
        Uninterrupted([&] { return open(path.c_str(), FlagsOf(mode) | O_CLOEXEC, 0666); });
    if (descriptor < 0) return LastError();
    auto opened = std::make_unique<PosixFile<File>>(descriptor);
    struct stat status {};
    if (fstat(descriptor, &status) != 0) return LastError();
    if (S_ISDIR(status.st_mode)) return std::make_error_code(std::errc::is_a_directory);
    if (mode != OpenMode::read) {
      if (const auto error = ShareWriting(descriptor)) return error;
    }
    if (mode == OpenMode::create && S_ISREG(status.st_mode)) {
      if (const auto error = Truncate(descriptor, 0)) return error;
    }
    file = std::move(opened);
    return {};
  }

  std::error_code OpenExclusive(const std::string& path, Caching caching,
                                std::unique_ptr<ExclusiveFile>& file) override {
    file.reset();
    const int flags = FlagsOf(caching) | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    return Claim(Uninterrupted([&] { return open(path.c_str(), flags); }), path, file);
  }

  std::error_code CreateNew(const std::string& path, Caching caching,
                            std::unique_ptr<ExclusiveFile>& file) override {
    file.reset();
    const int flags = FlagsOf(caching) | O_CLOEXEC | O_CREAT | O_EXCL;
    return Claim(Uninterrupted([&] { return open(path.c_str(), flags, 0666); }), path, file);
  }

  std::error_code Rename(const std::string& from, const std::string& to) override {
    std::unique_ptr<ExclusiveFile> claim;
    if (const auto error = OpenExclusive(from, Caching::normal, claim)) return error;
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return {};
    if (errno != EINVAL && errno != ENOSYS) return LastError();
    if (Exists(to)) return std::make_error_code(std::errc::file_exists);
    return rename(from.c_str(), to.c_str()) == 0 ? std::error_code() : LastError();
  }

  std::error_code SyncNames(const std::string& path) override {
    const int descriptor = open(FolderOf(path).c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY);
    if (descriptor < 0) return LastError();
    const PosixFile<File> owner(descriptor);
    return fsync(descriptor) == 0 ? std::error_code() : LastError();
  }

  std::error_code Delete(const std::string& path) override {
    return unlink(path.c_str()) == 0 ? std::error_code() : LastError();
  }

  bool Exists(const std::string& path) override {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
  }

  std::error_code Look(const std::string& path, NameKind& kind) override {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) {
      kind = KindOf(status.st_mode);
      return {};
    }
    if (errno != ENOENT && errno != ENOTDIR) return LastError();
    const bool is_link = lstat(path.c_str(), &status) == 0;
    const bool can_be_made = !path.empty() && !is_link && IsFolder(FolderOf(path));
    kind = can_be_made ? NameKind::missing : NameKind::nowhere;
    return {};
  }

 private:
  static bool IsFolder(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
  }
};

}  // namespace

FileSystem& SystemFiles() {
  static FileSystem& files = *new PosixFileSystem;
  return files;
}

}  // namespace vdstomgr::os
