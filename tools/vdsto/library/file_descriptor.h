#pragma once
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <span>
#include <string>

namespace vdsto {

/// An open file whose calls leave their error in errno.
class FileDescriptor {
 public:
  FileDescriptor(const std::string& path, int flags)
      : descriptor_(open(path.c_str(), flags | O_CLOEXEC, 0666)) {}
  ~FileDescriptor() {
    if (IsOpen()) close(descriptor_);
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;

  bool IsOpen() const { return descriptor_ >= 0; }
  int Get() const { return descriptor_; }

  bool Write(std::span<const unsigned char> bytes) const {
    while (!bytes.empty()) {
      const ssize_t count = write(descriptor_, bytes.data(), bytes.size());
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) return false;
      bytes = bytes.subspan(static_cast<size_t>(count));
    }
    return true;
  }
  /// What there is, up to the size of `bytes`; less after a failure.
  size_t Read(std::span<unsigned char> bytes) const {
    size_t done = 0;
    while (done < bytes.size()) {
      const ssize_t count = read(descriptor_, bytes.data() + done, bytes.size() - done);
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) break;
      done += static_cast<size_t>(count);
    }
    return done;
  }
  bool Sync() const { return fsync(descriptor_) == 0; }

 private:
  int descriptor_;
};

}  // namespace vdsto
