#include "tools/vdsto/cli/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "tools/vdsto/library/finished_file.h"
#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/selection/originals.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kModeBits = 0777;

void Require(bool done) {
  if (!done) throw std::system_error(errno, std::generic_category());
}

ToolError NotWritten(const std::string& path, const std::error_code& error) {
  return {ExitCode::kUnexpected, Printable(path) + " cannot be written: " + error.message()};
}

ToolError Refused(const std::string& path, const std::string& reason) {
  return {ExitCode::kRefused, Printable(path) + " " + reason};
}

bool IsFileOfLibrary(const std::string& library_folder, FileIdentity file) {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(library_folder, error)) {
    if (IdentityOf(entry.path().string()) == file) return true;
  }
  return false;
}

/// A file descriptor that is closed in any case.
class Descriptor {
 public:
  Descriptor(const std::string& path, int flags)
      : descriptor_(open(path.c_str(), flags | O_WRONLY | O_CLOEXEC, 0666)) {
    Require(descriptor_ >= 0);
  }
  ~Descriptor() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  void Write(std::span<const uint8_t> bytes) const {
    while (!bytes.empty()) {
      const ssize_t written = write(descriptor_, bytes.data(), bytes.size());
      if (written < 0 && errno == EINTR) continue;
      Require(written > 0);
      bytes = bytes.subspan(static_cast<size_t>(written));
    }
  }
  /// Some file systems have no such thing.
  void TrySetMode(mode_t mode) const { static_cast<void>(fchmod(descriptor_, mode & kModeBits)); }
  void Sync() const { Require(fsync(descriptor_) == 0); }

 private:
  int descriptor_;
};

}  // namespace

OutputFile::OutputFile(const std::string& path) : path_(path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) == 0) {
    if (stat(path.c_str(), &status) != 0) throw Refused(path, "is a link to nowhere");
    mode_ = status.st_mode;
  }
  if (mode_ ? S_ISDIR(*mode_) : path.empty() || path.ends_with('/'))
    throw ToolError(ExitCode::kUsage,
                    "'" + Printable(path) + "' is a folder: name the file to write");
  if (mode_ && (S_ISBLK(*mode_) || S_ISSOCK(*mode_)))
    throw ToolError(ExitCode::kUsage, Printable(path) + " is no file that can be written");
  Resolve();
}

void OutputFile::Resolve() {
  std::error_code error;
  const fs::path absolute = fs::absolute(path_, error);
  const fs::path whole = mode_ && S_ISREG(*mode_)
                             ? fs::canonical(absolute, error)
                             : fs::canonical(absolute.parent_path(), error) / absolute.filename();
  if (error) throw NotWritten(path_, error);
  folder_ = whole.parent_path().string();
  name_ = whole.filename().string();
}

void OutputFile::RequireFree(Library& library, bool force) const {
  if (mode_ && !S_ISREG(*mode_)) return;
  const auto file = mode_ ? IdentityOf(Joined(folder_, name_)) : std::nullopt;
  if (IdentityOf(folder_) == IdentityOf(library.Folder()) ||
      (file && IsFileOfLibrary(library.Folder(), *file)))
    throw Refused(path_, "is in the library's folder: choose another place");
  auto photo = PhotoOfPlace(library, folder_, name_);
  if (!photo && file) photo = PhotoOfFile(library, *file);
  if (photo) {
    throw Refused(path_, "belongs to the picture " +
                             Printable(CataloguePath(library).NameOf(*photo)) +
                             ", which is never written over: choose another name");
  }
  if (file && !force) throw Refused(path_, "exists already: --force replaces it");
}

void OutputFile::Write(std::span<const uint8_t> contents) const {
  try {
    if (mode_ && !S_ISREG(*mode_)) return Descriptor(path_, 0).Write(contents);
    if (mode_) Require(access(path_.c_str(), W_OK) == 0);
    const std::string unfinished = Joined(folder_, ".vdsto-" + std::to_string(getpid()) + ".new");
    WriteUnfinished(unfinished, contents);
    if (!Publish(unfinished)) throw Refused(path_, "exists already: --force replaces it");
  } catch (const std::system_error& error) {
    throw NotWritten(path_, error.code());
  }
}

void OutputFile::WriteUnfinished(const std::string& unfinished,
                                 std::span<const uint8_t> contents) const {
  unlink(unfinished.c_str());  // of a process that was killed
  const Descriptor file(unfinished, O_CREAT | O_EXCL);
  try {
    file.Write(contents);
    if (mode_) file.TrySetMode(*mode_);
    file.Sync();
  } catch (...) {
    unlink(unfinished.c_str());
    throw;
  }
}

bool OutputFile::Publish(const std::string& unfinished) const {
  const std::string path = Joined(folder_, name_);
  if (!mode_) return PublishFile(unfinished, path);
  ReplaceFile(unfinished, path);
  return true;
}

}  // namespace vdsto
