#include "tools/vdsto/upload/folder_target.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/upload/upload_error.h"

namespace vdsto {
namespace {

constexpr size_t kBufferBytes = 256 * 1024;

/// An open file of the target.
class TargetFile {
 public:
  /// Without O_CREAT a file that is not there is no failure; see IsThere.
  TargetFile(std::string path, int flags)
      : path_(std::move(path)), descriptor_(open(path_.c_str(), flags | O_CLOEXEC, 0666)) {
    const bool may_be_missing = (flags & O_CREAT) == 0 && errno == ENOENT;
    if (descriptor_ < 0 && !may_be_missing) ThrowTargetErrno(errno, path_);
  }
  ~TargetFile() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  TargetFile(const TargetFile&) = delete;
  TargetFile& operator=(const TargetFile&) = delete;

  bool IsThere() const { return descriptor_ >= 0; }

  uint64_t Size() const {
    struct stat state {};
    if (fstat(descriptor_, &state) != 0) ThrowTargetErrno(errno, path_);
    return static_cast<uint64_t>(state.st_size);
  }

  void Empty() const {
    if (ftruncate(descriptor_, 0) != 0) ThrowTargetErrno(errno, path_);
  }

  void Append(std::span<const char> bytes) const {
    while (!bytes.empty()) {
      const ssize_t count = write(descriptor_, bytes.data(), bytes.size());
      if (count < 0 && errno != EINTR) ThrowTargetErrno(errno, path_);
      if (count > 0) bytes = bytes.subspan(static_cast<size_t>(count));
    }
  }

  size_t Read(std::span<char> buffer) const {
    const ssize_t count = read(descriptor_, buffer.data(), buffer.size());
    if (count < 0) ThrowTargetErrno(errno, path_);
    return static_cast<size_t>(count);
  }

  void SyncFileSystem() const {
    if (syncfs(descriptor_) != 0) ThrowTargetErrno(errno, path_);
  }

  /// Some file systems tell only now that they have no space.
  void Close() {
    if (close(std::exchange(descriptor_, -1)) != 0) ThrowTargetErrno(errno, path_);
  }

 private:
  std::string path_;
  int descriptor_;
};

class FolderTarget : public UploadTarget {
 public:
  explicit FolderTarget(const std::string& folder) : folder_(folder), buffer_(kBufferBytes) {}

  std::unique_ptr<UploadTarget> Another() const override {
    return std::make_unique<FolderTarget>(folder_);
  }
  bool KeepsParts() const override { return true; }

  std::vector<std::string> OpenFolder(const std::string& folder) override {
    RequireOwnFolder();
    const std::string path = PathOf(folder);
    std::error_code error;
    std::filesystem::create_directories(path, error);
    if (error) ThrowTargetErrno(error.value(), path);
    std::vector<std::string> names;
    std::filesystem::directory_iterator entry(path, error);
    for (const auto end = std::filesystem::directory_iterator(); !error && entry != end;
         entry.increment(error))
      names.push_back(entry->path().filename().string());
    if (error) ThrowTargetErrno(error.value(), path);
    return names;
  }

  void Send(OutgoingFile& file, const std::string& path, bool resume) override {
    TargetFile target(PathOf(path),
                      O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW | (resume ? 0 : O_TRUNC));
    const uint64_t size = resume ? target.Size() : 0;
    if (size > file.Size()) target.Empty();
    file.Begin(size > file.Size() ? 0 : size);
    while (const size_t count = file.Read(buffer_)) {
      target.Append(std::span(buffer_).first(count));
      file.NoteArrival();
    }
    if (target.Size() != file.Size())
      throw UploadError(UploadFault::kNotWhole, path + ": its size is not that of the file");
    target.Close();
  }

  bool Rename(const std::string& from, const std::string& to) override {
    const std::string source = PathOf(from);
    const std::string target = PathOf(to);
    if (renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0)
      return true;
    if (errno == EEXIST) return false;
    if (errno == EINVAL || errno == ENOSYS) return RenameByLink(source, target);
    ThrowTargetErrno(errno, target);
  }

  bool Holds(const OutgoingFile& file, const std::string& path) override {
    const TargetFile target(PathOf(path), O_RDONLY | O_NONBLOCK);
    if (!target.IsThere() || target.Size() != file.Size() || IsFolder(path)) return false;
    std::vector<char> ours(kBufferBytes);
    for (uint64_t position = 0;;) {
      const size_t count = target.Read(buffer_);
      if (count == 0) return position == file.Size();
      if (file.ReadAt(position, std::span(ours).first(count)) != count ||
          !std::equal(ours.begin(), ours.begin() + static_cast<ptrdiff_t>(count), buffer_.begin()))
        return false;
      position += count;
    }
  }

  void Remove(const std::string& path) override {
    if (unlink(PathOf(path).c_str()) != 0 && errno != ENOENT) ThrowTargetErrno(errno, path);
  }

  void Settle() override {
    const TargetFile folder(folder_, O_RDONLY | O_DIRECTORY);
    if (folder.IsThere()) folder.SyncFileSystem();
  }

 private:
  std::string PathOf(const std::string& path) const {
    return path.empty() ? folder_ : Joined(folder_, path);
  }

  void RequireOwnFolder() const {
    std::error_code error;
    if (std::filesystem::is_directory(folder_, error)) return;
    throw UploadError(UploadFault::kFolderGone,
                      folder_ + " is no folder: make it, or mount its disk, first");
  }

  bool IsFolder(const std::string& path) const {
    std::error_code error;
    return std::filesystem::is_directory(PathOf(path), error);
  }

  /// For file systems whose rename always replaces.
  static bool RenameByLink(const std::string& from, const std::string& to) {
    if (link(from.c_str(), to.c_str()) == 0) {
      unlink(from.c_str());
      return true;
    }
    const int error = errno;
    std::error_code ignored;
    if (error == EEXIST || std::filesystem::exists(to, ignored)) return false;
    if (rename(from.c_str(), to.c_str()) != 0) ThrowTargetErrno(errno, to);
    return true;
  }

  const std::string folder_;
  std::vector<char> buffer_;
};

}  // namespace

std::unique_ptr<UploadTarget> MakeFolderTarget(const std::string& folder) {
  return std::make_unique<FolderTarget>(folder);
}

}  // namespace vdsto
