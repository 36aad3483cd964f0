#include "tools/vdsto/backup/restore.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "tools/vdsto/library/file_descriptor.h"
#include "tools/vdsto/library/lock_file.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

namespace fs = std::filesystem;

/// Any of them makes a folder one of a library.
constexpr std::array kLibraryFiles{"catalogue.vdb", "search.vdb", "facts.vdb", "images.pdb"};
constexpr std::array<std::string_view, 2> kLocks{"import.lock", "upload.lock"};

bool IsThere(const std::string& path) {
  std::error_code error;
  return fs::exists(fs::symlink_status(path, error));
}

/// The library that is to be replaced, kept from everybody else.
class OldLibrary {
 public:
  explicit OldLibrary(const std::string& folder) {
    for (const std::string_view name : kLocks) {
      auto& lock = locks_.emplace_back(std::make_unique<LockFile>(folder, std::string(name)));
      if (!lock->Try()) ThrowInUse(folder);
    }
    for (fs::directory_iterator entry(folder), end; entry != end; ++entry)
      if (entry->path().extension() == ".vdb") Claim(entry->path().string(), folder);
    Claim(Joined(folder, "images.pdb"), folder);
  }

 private:
  [[noreturn]] static void ThrowInUse(const std::string& folder) {
    throw ToolError(ExitCode::kRefused, "somebody uses the library in " + Printable(folder) +
                                            ": end that first, or restore into another folder");
  }

  /// An open database holds a lock on its file, an open image store one of the other kind.
  void Claim(const std::string& path, const std::string& folder) {
    if (!IsThere(path)) return;
    auto& file = files_.emplace_back(std::make_unique<FileDescriptor>(path, O_RDWR));
    struct flock whole {};
    whole.l_type = F_WRLCK;
    const bool is_free = file->IsOpen() && fcntl(file->Get(), F_SETLK, &whole) == 0 &&
                         ::flock(file->Get(), LOCK_EX | LOCK_NB) == 0;
    if (is_free) return;
    if (!file->IsOpen()) ThrowErrno(path, errno);
    ThrowInUse(folder);
  }

  std::vector<std::unique_ptr<LockFile>> locks_;
  std::vector<std::unique_ptr<FileDescriptor>> files_;
};

/// The folder that becomes the library, beside its place.
class NewLibrary {
 public:
  explicit NewLibrary(const std::string& path)
      : path_(Joined(ParentOf(path), "." + std::string(LastComponent(path)) + ".vdsto-restore")) {
    std::error_code error;
    fs::create_directories(path_, error);
    if (error) ThrowErrno(path_, error.value());
    lock_.emplace(path_, std::string(kLocks[0]));
    if (!lock_->Try())
      throw ToolError(ExitCode::kRefused, "another vdsto restore works on this library");
    for (const auto& left_behind : fs::directory_iterator(path_))
      if (left_behind.path().filename() != kLocks[0]) fs::remove(left_behind.path());
  }
  ~NewLibrary() {
    std::error_code ignored;
    if (!is_in_place_) fs::remove_all(path_, ignored);
  }
  NewLibrary(const NewLibrary&) = delete;
  NewLibrary& operator=(const NewLibrary&) = delete;

  const std::string& Path() const { return path_; }

  /// Takes the place of `path`; what was there is then at the path that is answered, if anything.
  std::string TakePlace(const std::string& path, bool is_replacing, const std::string& kept) {
    const FileDescriptor folder(path_, O_RDONLY | O_DIRECTORY);
    if (!folder.IsOpen() || !folder.Sync()) ThrowErrno(path_, errno);
    if (is_replacing) {
      Exchange(path, kept);
    } else if (rename(path_.c_str(), path.c_str()) != 0) {
      ThrowNotPlaced(path);
    }
    is_in_place_ = true;
    const FileDescriptor parent(ParentOf(path), O_RDONLY | O_DIRECTORY);
    if (parent.IsOpen()) static_cast<void>(parent.Sync());
    return is_replacing ? kept : std::string();
  }

 private:
  /// In one step where the file system can: there is a library in its place at any time.
  void Exchange(const std::string& path, const std::string& kept) const {
    if (renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, path.c_str(), RENAME_EXCHANGE) == 0) {
      if (rename(path_.c_str(), kept.c_str()) != 0) ThrowErrno(kept, errno);
      return;
    }
    if (errno != EINVAL && errno != ENOSYS) ThrowNotPlaced(path);
    if (rename(path.c_str(), kept.c_str()) != 0) ThrowNotPlaced(path);
    if (rename(path_.c_str(), path.c_str()) == 0) return;
    const int error = errno;
    static_cast<void>(rename(kept.c_str(), path.c_str()));
    ThrowErrno(path, error);
  }

  [[noreturn]] static void ThrowNotPlaced(const std::string& path) {
    throw ToolError(ExitCode::kCannotOpen,
                    Printable(path) + " cannot be renamed (" +
                        std::generic_category().message(errno) +
                        "): restore into a folder inside or beside it with --library");
  }

  std::string path_;
  std::optional<LockFile> lock_;
  bool is_in_place_ = false;
};

class RestoreRun {
 public:
  RestoreRun(const BackupFolder& folder, PieceStore& pieces, const Generation& generation,
             const BackupProgress& progress)
      : folder_(folder), pieces_(pieces), generation_(generation), progress_(progress) {}

  void WriteTo(const std::string& target) {
    for (const BackedUpFile& file : generation_.files) Write(file, Joined(target, file.name));
  }

 private:
  void Write(const BackedUpFile& file, const std::string& path) {
    const FileDescriptor target(path, O_WRONLY | O_CREAT | O_EXCL);
    std::vector<unsigned char> bytes;
    if (!target.IsOpen()) ThrowErrno(path, errno);
    for (size_t i = 0; i < file.pieces.size(); ++i) {
      const uint64_t size = file.SizeOfPiece(i);
      if (pieces_.Read(file.pieces[i], size, bytes) != PieceFault::kNone) ThrowDamaged(file.name);
      if (!target.Write(bytes)) ThrowErrno(path, errno);
      progress_(done_ += size, generation_.Bytes());
    }
    if (!target.Sync()) ThrowErrno(path, errno);
  }

  [[noreturn]] void ThrowDamaged(const std::string& name) const {
    throw ToolError(ExitCode::kDamaged,
                    name + " is damaged in the backup " + generation_.id +
                        ": nothing was restored. vdsto backup --verify " +
                        Printable(folder_.Path()) +
                        " tells which backups are whole; --generation chooses one");
  }

  const BackupFolder& folder_;
  PieceStore& pieces_;
  const Generation& generation_;
  const BackupProgress& progress_;
  uint64_t done_ = 0;
};

/// A name beside the library's that is not taken.
std::string KeptName(const std::string& path, const std::string& id) {
  std::string name = path + ".before-" + id;
  for (int number = 2; IsThere(name); ++number)
    name = path + ".before-" + id + "." + std::to_string(number);
  return name;
}

/// An import that found nothing leaves no more; what it leaves goes.
bool HasOnlyLocks(const std::string& path) {
  std::error_code error;
  for (fs::directory_iterator entry(path, error), end; !error && entry != end;
       entry.increment(error))
    if (std::ranges::find(kLocks, entry->path().filename().string()) == kLocks.end()) return false;
  if (error) ThrowErrno(path, error.value());
  for (const std::string_view lock : kLocks) fs::remove(Joined(path, lock), error);
  return true;
}

/// True when there is a library to be replaced.
bool RequireReplaceable(const std::string& path, bool force) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status)) return false;
  if (!fs::is_directory(status))
    throw ToolError(ExitCode::kUsage, "'" + Printable(path) + "' is no folder");
  if (HasOnlyLocks(path)) return false;
  if (std::ranges::none_of(kLibraryFiles,
                           [&](const char* name) { return IsThere(Joined(path, name)); }))
    throw ToolError(ExitCode::kRefused, Printable(path) +
                                            " is not empty and no library: name another folder "
                                            "with --library");
  if (force) return true;
  throw ToolError(ExitCode::kRefused,
                  "there is a library in " + Printable(path) +
                      " already: --force puts it aside, --library names another folder");
}

/// Without links and without a slash at its end.
std::string WholePath(const std::string& folder) {
  fs::path path = fs::absolute(folder).lexically_normal();
  if (!path.has_filename()) path = path.parent_path();
  return fs::weakly_canonical(path).string();
}

}  // namespace

std::string Restore(const BackupFolder& folder, PieceStore& pieces, const Generation& generation,
                    const std::string& library_folder, bool force, const BackupProgress& progress) {
  const std::string path = WholePath(library_folder);
  const bool is_replacing = RequireReplaceable(path, force);
  std::optional<OldLibrary> old;
  if (is_replacing) old.emplace(path);
  NewLibrary restored(path);
  RestoreRun(folder, pieces, generation, progress).WriteTo(restored.Path());
  return restored.TakePlace(path, is_replacing, KeptName(path, generation.id));
}

}  // namespace vdsto
