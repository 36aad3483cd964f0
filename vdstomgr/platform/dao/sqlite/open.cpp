#include "vdstomgr/platform/dao/sqlite/open.h"

#include <sqlite3.h>

#include <cctype>
#include <cstdint>
#include <string>

#include "vdstomgr/platform/dao/dao_exception.h"
#include "vdstomgr/platform/dao/engine.h"
#include "vdstomgr/platform/dao/sqlite/connection.h"
#include "vdstomgr/platform/dao/sqlite/database_file.h"
#include "vdstomgr/platform/dao/sqlite/errors.h"
#include "vdstomgr/platform/dao/sqlite/functions.h"
#include "vdstomgr/platform/dao/sqlite/gram_tokenizer.h"
#include "vdstomgr/platform/os/file.h"
#include "vdstomgr/platform/os/long_path.h"

namespace vdstomgr::sqlite {
namespace {

using dao::Error;

constexpr int kBusyTimeoutMs = 15'000;
constexpr size_t kHeaderSize = 100;

enum class FileForm { Plain, Encrypted };

enum class Manner {
  Writing,
  Abstaining,  // could write, and does not
  Sharing,     // beside writers, with the memory that they share
  Alone,       // nobody else has the file open: its log is read into memory of our own
  Settled      // there is no log: the file is all there is
};

bool IsReading(Manner manner) {
  return manner != Manner::Writing;
}

bool CanWrite(Manner manner) {
  return manner == Manner::Writing || manner == Manner::Abstaining;
}

// The engine's own handle of the open file. Nothing else may open and close a file that could be
// open in this process: that would drop the engine's locks on it.
sqlite3_file* FileOf(sqlite3* db, const std::string& path) {
  sqlite3_file* file = nullptr;
  Check(db, sqlite3_file_control(db, "main", SQLITE_FCNTL_FILE_POINTER, &file), path);
  return file;
}

std::uint64_t SizeOf(sqlite3* db, const std::string& path) {
  sqlite3_file* file = FileOf(db, path);
  sqlite3_int64 size = 0;
  Check(db, file->pMethods->xFileSize(file, &size), path);
  return static_cast<std::uint64_t>(size);
}

std::string ReadHeader(sqlite3* db, const std::string& path) {
  sqlite3_file* file = FileOf(db, path);
  if (SizeOf(db, path) < kHeaderSize) Throw(Error::NotADatabase, path);
  std::string header(kHeaderSize, '\0');
  Check(db, file->pMethods->xRead(file, header.data(), static_cast<int>(kHeaderSize), 0), path);
  return header;
}

// The engine answers "not a database" to a wrong password, a missing one and a text file alike. The
// file's first bytes tell them apart: the cipher leaves bytes 16 to 23 of the header readable.
FileForm RecogniseFile(sqlite3* db, const std::string& path) {
  const std::string header = ReadHeader(db, path);
  if (header.starts_with(std::string_view("SQLite format 3\0", 16))) return FileForm::Plain;
  if (header.substr(20, 4) == "\x20\x40\x20\x20") return FileForm::Encrypted;
  Throw(Error::NotADatabase, path);
}

// An open database holds at least a shared lock on its file, in this process or another.
bool LockAlone(sqlite3* db, const std::string& path) {
  sqlite3_file* file = FileOf(db, path);
  for (const int lock : {SQLITE_LOCK_SHARED, SQLITE_LOCK_RESERVED, SQLITE_LOCK_EXCLUSIVE}) {
    if (file->pMethods->xLock(file, lock) != SQLITE_OK) return false;
  }
  return true;
}

int ReadInteger(sqlite3* db, const char* sql, const std::string& path) {
  sqlite3_stmt* raw = nullptr;
  Check(db, sqlite3_prepare_v2(db, sql, -1, &raw, nullptr), path);
  const StatementHandle statement(raw);
  const int code = sqlite3_step(raw);
  if (code != SQLITE_ROW) ThrowEngineError(db, code, path);
  return sqlite3_column_int(raw, 0);
}

void Run(sqlite3* db, const char* sql, const std::string& path) {
  Check(db, sqlite3_exec(db, sql, nullptr, nullptr, nullptr), path);
}

DatabaseHandle OpenHandle(const std::string& name, int flags, const char* file_layer,
                          const std::string& path) {
  sqlite3* raw = nullptr;
  const int all_flags = flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
  const int code = sqlite3_open_v2(name.c_str(), &raw, all_flags, file_layer);
  DatabaseHandle db(raw);
  if (code != SQLITE_OK) ThrowEngineError(db.get(), code, path);
  return db;
}

DatabaseHandle OpenToWrite(const std::string& path) {
  DatabaseHandle db = OpenHandle(os::LongPath(path), SQLITE_OPEN_READWRITE, nullptr, path);
  if (sqlite3_db_readonly(db.get(), "main") == 1) Throw(Error::FileNotAccessible, path);
  return db;
}

std::string AddressOf(const std::string& path) {
  std::string address = path.starts_with('/') ? "file://" : "file:";
  for (const unsigned char byte : path) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    if (std::isalnum(byte) || byte == '/' || byte == '.') {
      address += static_cast<char>(byte);
    } else {
      (address += '%') += kDigits[byte >> 4];
      address += kDigits[byte & 15];
    }
  }
  return address + "?immutable=1";
}

// The engine's own layers of files each have a twin that takes no locks.
std::string LayerWithoutLocks() {
  return std::string(sqlite3_vfs_find(nullptr)->zName) + "-none";
}

DatabaseHandle OpenIn(Manner manner, const std::string& path) {
  const std::string name = os::LongPath(path);
  constexpr int kRead = SQLITE_OPEN_READONLY;
  switch (manner) {
    case Manner::Sharing:
      return OpenHandle(name, kRead, nullptr, path);
    case Manner::Alone:
      return OpenHandle(name, kRead, LayerWithoutLocks().c_str(), path);
    case Manner::Settled:
      return OpenHandle(AddressOf(name), kRead | SQLITE_OPEN_URI, nullptr, path);
    case Manner::Writing:
    case Manner::Abstaining:
      break;
  }
  return OpenToWrite(path);
}

// How a file is read that cannot be written, so that nothing is made beside it: what the engine
// makes there for a reader would be in the way of a later writer.
Manner MannerOfReading(const std::string& path) {
  const DatabaseHandle db = OpenIn(Manner::Sharing, path);
  const std::string file = sqlite3_db_filename(db.get(), "main");  // where links lead
  if (!IsGone(file + "-journal")) return Manner::Sharing;  // half a change: the engine refuses
  if (IsGone(file + "-wal")) return Manner::Settled;
  return IsGone(file + "-shm") ? Manner::Alone : Manner::Sharing;
}

// Settings of the connection; none of them touches the file.
void Configure(sqlite3* db) {
  sqlite3_busy_timeout(db, kBusyTimeoutMs);
  sqlite3_db_config(db, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(db, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_limit(db, SQLITE_LIMIT_ATTACHED, 0);
  InstallFunctions(db);
}

// Everything that touches the file for the first time, so that its faults show now.
void ProveReadable(sqlite3* db, FileForm form, Manner manner, const std::string& path) {
  try {
    // First of all: what looks into the file asks for shared memory, which that layer has not got.
    if (manner == Manner::Alone) Run(db, "PRAGMA locking_mode = EXCLUSIVE", path);
    Run(db, "PRAGMA cache_size = -65536", path);
    ReadInteger(db, "SELECT count(*) FROM sqlite_schema", path);
    Run(db, IsReading(manner) ? "PRAGMA query_only = 1" : "PRAGMA journal_mode = WAL", path);
    InstallGramTokenizer(db);  // reads the schema, too
  } catch (const CDaoException& error) {
    const auto code = static_cast<Error>(error.Code());
    if (code == Error::NotADatabase && form == FileForm::Encrypted) Throw(Error::InvalidPassword);
    if (code == Error::NotADatabase) Throw(Error::FileDamaged, path);
    if (code == Error::ReadOnly) Throw(Error::FileNotAccessible, path);
    throw;
  }
}

// A file that lost its tail still opens; only the pages it lacks would fail, one day. Pages that
// are in the write-ahead log only are not missing.
void RequireWholeFile(sqlite3* db, Manner manner, const std::string& path) {
  const auto is_short = [&] {
    const auto pages = static_cast<std::uint64_t>(ReadInteger(db, "PRAGMA page_count", path));
    const auto page_size = static_cast<std::uint64_t>(ReadInteger(db, "PRAGMA page_size", path));
    return SizeOf(db, path) < pages * page_size;
  };
  if (!is_short()) return;
  if (manner == Manner::Settled) Throw(Error::FileDamaged, path);
  if (!CanWrite(manner)) return;  // only a writer can tell what the log holds of it
  int in_log = 0;
  int moved = 0;
  const int code =
      sqlite3_wal_checkpoint_v2(db, nullptr, SQLITE_CHECKPOINT_PASSIVE, &in_log, &moved);
  if (code == SQLITE_OK && in_log == moved && is_short()) Throw(Error::FileDamaged, path);
}

void SetKey(sqlite3* db, std::string_view password, const std::string& path) {
  if (password.empty()) return;
  Check(db, sqlite3_key(db, password.data(), static_cast<int>(password.size())), path);
}

std::unique_ptr<dao::Connection> Open(const std::string& path, std::string_view password,
                                      Manner manner) {
  DatabaseHandle db = OpenIn(manner, path);
  const FileForm form = RecogniseFile(db.get(), path);
  if ((form == FileForm::Encrypted) != !password.empty()) Throw(Error::InvalidPassword);
  SetKey(db.get(), password, path);
  Configure(db.get());
  ProveReadable(db.get(), form, manner, path);
  RequireWholeFile(db.get(), manner, path);
  return std::make_unique<sqlite::Connection>(std::move(db), path);
}

}  // namespace

DatabaseHandle OpenCopy(const std::string& path, std::string_view password) {
  MakeFile(path);
  try {
    DatabaseHandle db = OpenToWrite(path);
    SetKey(db.get(), password, path);
    Configure(db.get());
    InstallGramTokenizer(db.get());
    Run(db.get(), "PRAGMA journal_mode = OFF", path);
    Run(db.get(), "PRAGMA synchronous = OFF", path);
    return db;
  } catch (...) {
    RemoveFiles(path);
    throw;
  }
}

}  // namespace vdstomgr::sqlite

namespace vdstomgr::dao {

using namespace vdstomgr::sqlite;

std::unique_ptr<Connection> OpenDatabase(const std::string& path, std::string_view password,
                                         Access access) {
  RequireFile(path);
  if (access == Access::Write) return sqlite::Open(path, password, Manner::Writing);
  try {
    return sqlite::Open(path, password, Manner::Abstaining);
  } catch (const CDaoException& error) {
    if (static_cast<Error>(error.Code()) != Error::FileNotAccessible) throw;
  }
  return sqlite::Open(path, password, MannerOfReading(path));
}

std::unique_ptr<Connection> CreateDatabase(const std::string& path) {
  MakeFile(path);
  try {
    DatabaseHandle db = OpenToWrite(path);
    Configure(db.get());
    ProveReadable(db.get(), FileForm::Plain, Manner::Writing, path);
    return std::make_unique<sqlite::Connection>(std::move(db), path);
  } catch (...) {
    RemoveFiles(path);
    throw;
  }
}

bool DeleteDatabase(const std::string& path) {
  if (!IsFileName(path)) return false;
  try {
    if (IsGone(path)) return true;
    RequireFile(path);
    // Held until the names are gone, so that nobody opens the file while it is deleted; where the
    // system refuses to delete a file that somebody has open, it sees to that itself.
    DatabaseHandle db = OpenToWrite(path);
    if (!LockAlone(db.get(), path)) return false;
    if (!os::kDeletesOpenFiles) db.reset();
    return RemoveFiles(path);
  } catch (const CDaoException&) {
    return false;  // whether somebody uses it cannot be told
  }
}

}  // namespace vdstomgr::dao
