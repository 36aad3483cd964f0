#include "vdstomgr/platform/dao/sqlite/database_file.h"

#include <memory>

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/sqlite/errors.h"
#include "vdstomgr/platform/os/file.h"

namespace vdstomgr::sqlite {
namespace {

using dao::Error;
using os::NameKind;

NameKind Look(const std::string& path) {
  NameKind kind = NameKind::other;
  if (const auto error = os::Files().Look(path, kind)) ThrowFileError(error, path);
  return kind;
}

}  // namespace

// To the engine "" is a temporary database and ":memory:" one without a file; it keeps other names
// with a colon in front for itself, and may have been built to take "file:" for an address.
bool IsFileName(std::string_view path) {
  return !path.empty() && !path.starts_with(':') && !path.starts_with("file:");
}

void RequireFile(const std::string& path) {
  if (!IsFileName(path)) Throw(Error::InvalidPath, path);
  switch (Look(path)) {
    case NameKind::file:
      return;
    case NameKind::missing:
      Throw(Error::FileNotFound, path);
    case NameKind::nowhere:
      Throw(Error::InvalidPath, path);
    case NameKind::folder:
    case NameKind::other:
      Throw(Error::NotADatabase, path);
  }
}

void MakeFile(const std::string& path) {
  if (!IsFileName(path)) Throw(Error::InvalidPath, path);
  switch (Look(path)) {
    case NameKind::missing:
      break;
    case NameKind::nowhere:
    case NameKind::folder:
      Throw(Error::InvalidPath, path);
    case NameKind::file:
    case NameKind::other:
      Throw(Error::DatabaseExists);
  }
  std::unique_ptr<os::ExclusiveFile> file;
  if (const auto error = os::Files().CreateNew(path, os::Caching::normal, file)) {
    // Some folders hold what the system makes and nothing else.
    if (error == std::errc::no_such_file_or_directory) Throw(Error::FileNotAccessible, path);
    ThrowFileError(error, path);
  }
}

bool IsGone(const std::string& path) {
  const NameKind kind = Look(path);
  return kind == NameKind::missing || kind == NameKind::nowhere;
}

bool RemoveFiles(const std::string& path) {
  if (os::Files().Delete(path)) return false;
  for (const char* companion : {"-wal", "-shm", "-journal"}) {
    (void)os::Files().Delete(path + companion);
  }
  return true;
}

}  // namespace vdstomgr::sqlite
