#include "tools/vdsto/library/password_change.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <system_error>

#include "tools/vdsto/library/database_password.h"
#include "tools/vdsto/library/file_descriptor.h"
#include "tools/vdsto/library/image_key.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/library/lock_file.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

namespace fs = std::filesystem;

constexpr const char* kCatalogue = "catalogue.vdb";
constexpr const char* kFacts = "facts.vdb";
constexpr const char* kSearch = "search.vdb";
constexpr const char* kCopySuffix = ".rekey";
constexpr std::array kCompanions{"-wal", "-shm", "-journal"};

[[noreturn]] void ThrowInUse(const std::string& folder) {
  throw ToolError(ExitCode::kRefused, "somebody uses the library in " + Printable(folder) +
                                          ": nothing was changed, try again when that has ended");
}

bool IsThere(const std::string& path) {
  std::error_code ignored;
  return fs::exists(path, ignored);
}

/// A link stays one.
std::string RealPath(const std::string& folder, const char* name) {
  std::error_code error;
  const std::string path = Joined(folder, name);
  const fs::path real = fs::canonical(path, error);
  return error ? path : real.string();
}

void RemoveDatabase(const std::string& path) {
  std::error_code ignored;
  fs::remove(path, ignored);
  for (const char* companion : kCompanions) fs::remove(path + companion, ignored);
}

bool Opens(const std::string& path, const std::string& password) {
  try {
    CDaoDatabase database;
    OpenUnderPassword(database, path, password);
    return true;
  } catch (const CDaoException&) {
    return false;
  }
}

void SyncFolderOf(const std::string& path) {
  const FileDescriptor folder(ParentOf(path), O_RDONLY | O_DIRECTORY);
  if (!folder.IsOpen() || !folder.Sync()) ThrowErrno(ParentOf(path), errno);
}

/// Locks an open database file against everybody else's opening it; false while somebody has it.
bool Claim(const FileDescriptor& file) {
  struct flock whole {};
  whole.l_type = F_WRLCK;
  return fcntl(file.Get(), F_SETLK, &whole) == 0;
}

/// A database file that nobody else opens as long as this lives, and its copy, which is to take its
/// place. The engine's locks are the process's: it must not open and close the file meanwhile.
class Replacement {
 public:
  Replacement(const std::string& folder, const char* name)
      : folder_(folder), path_(RealPath(folder, name)), file_(path_, O_RDWR) {
    if (!file_.IsOpen()) ThrowErrno(path_, errno);
    if (!Claim(file_)) ThrowInUse(folder_);
    std::error_code none;
    if (const auto log = fs::file_size(path_ + "-wal", none); !none && log > 0) ThrowInUse(folder_);
    RemoveDatabase(Copy());
    CopyBytes();
  }
  ~Replacement() {
    if (!is_in_place_) RemoveDatabase(Copy());
  }
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

  /// The key of the images comes and goes while the copy is under a password.
  void Encrypt(const std::string& old_password, const std::string& new_password, bool has_key) {
    try {
      CDaoDatabase copy;
      const std::string old_text = OpenUnderPassword(copy, Copy(), old_password, true);
      if (has_key && new_password.empty()) DropImageKey(copy);
      copy.NewPassword(old_text.c_str(), CountingPassword(new_password).c_str());
      if (has_key && !new_password.empty()) AddImageKey(copy);
      copy.Close();
    } catch (const CDaoException& error) {
      throw ToolError(ExitCode::kCatalogue,
                      std::string(error.what()) + " The library is as it was");
    }
    const FileDescriptor file(Copy(), O_RDONLY);
    if (!file.IsOpen() || !file.Sync()) ThrowErrno(Copy(), errno);
  }

  void TakePlace() {
    if (rename(Copy().c_str(), path_.c_str()) != 0) ThrowErrno(path_, errno);
    is_in_place_ = true;
    SpoilOld();
    SyncFolderOf(path_);
  }

 private:
  std::string Copy() const { return path_ + kCopySuffix; }

  void CopyBytes() const {
    struct stat status {};
    const FileDescriptor copy(Copy(), O_WRONLY | O_CREAT | O_EXCL);
    if (!copy.IsOpen() || fstat(file_.Get(), &status) != 0 ||
        fchmod(copy.Get(), status.st_mode & 07777) != 0)
      ThrowErrno(Copy(), errno);
    std::vector<unsigned char> bytes(size_t{1} << 20);
    while (const size_t count = file_.Read(bytes)) {
      if (copy.Write({bytes.data(), count})) continue;
      const int error = errno;
      RemoveDatabase(Copy());
      ThrowErrno(Copy(), error);
    }
  }

  /// Who waits to open the file that has lost its name must not take it for the database: what he
  /// wrote would be gone, and his log would lie beside the new one.
  void SpoilOld() const {
    constexpr std::array<char, 512> kNothing{};
    struct stat status {};
    if (fstat(file_.Get(), &status) == 0 && status.st_nlink == 0)
      static_cast<void>(pwrite(file_.Get(), kNothing.data(), kNothing.size(), 0) < 0);
  }

  const std::string& folder_;
  std::string path_;
  FileDescriptor file_;
  bool is_in_place_ = false;
};

}  // namespace

void RequireUnused(const std::string& library_folder) {
  LockFile uploads(library_folder, "upload.lock");
  if (!uploads.Try() || IsInUse(ImageStorePath(library_folder))) ThrowInUse(library_folder);
  for (const char* name : {kCatalogue, kFacts, kSearch}) {
    const FileDescriptor file(RealPath(library_folder, name), O_RDWR);
    if (file.IsOpen() && !Claim(file)) ThrowInUse(library_folder);
  }
}

/// The search copy is made again of the catalogue sooner than it is encrypted anew; facts that the
/// old password does not open are of no use under the new one either.
void ChangePassword(const std::string& library_folder, const std::string& old_password,
                    const std::string& new_password, const ImportLock&) {
  LockFile uploads(library_folder, "upload.lock");
  if (!uploads.Try() || IsInUse(ImageStorePath(library_folder))) ThrowInUse(library_folder);
  const std::string facts_path = Joined(library_folder, kFacts);
  // Opening also takes in what a killed program has left in a log.
  if (!Opens(Joined(library_folder, kCatalogue), old_password)) ThrowInUse(library_folder);
  const bool has_facts = IsThere(facts_path) && Opens(facts_path, old_password);
  Replacement catalogue(library_folder, kCatalogue);
  std::unique_ptr<Replacement> facts;
  if (has_facts) facts = std::make_unique<Replacement>(library_folder, kFacts);
  catalogue.Encrypt(old_password, new_password, true);
  if (facts) facts->Encrypt(old_password, new_password, false);
  RemoveDatabase(RealPath(library_folder, kSearch));
  catalogue.TakePlace();
  if (facts) facts->TakePlace();
}

void FinishPasswordChange(const std::string& library_folder, const std::string& password,
                          const ImportLock&) {
  const std::string facts = RealPath(library_folder, kFacts);
  const std::string copy = facts + kCopySuffix;
  if (IsThere(copy) && Opens(copy, password) && !Opens(facts, password)) {
    RemoveDatabase(facts);
    if (rename(copy.c_str(), facts.c_str()) != 0) ThrowErrno(facts, errno);
  }
  RemoveDatabase(copy);
  RemoveDatabase(RealPath(library_folder, kCatalogue) + kCopySuffix);
}

std::vector<std::string> OlderPlainFiles(const std::string& library_folder) {
  std::vector<std::string> files;
  for (const char* name : {"facts.vdb.old", "images.pdb.damaged", "images.pdb.bak"}) {
    const std::string path = Joined(library_folder, name);
    if (IsThere(path)) files.push_back(path);
  }
  return files;
}

}  // namespace vdsto
