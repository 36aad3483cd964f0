#include <sqlite3.h>

#include <string>

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/sqlite/connection.h"
#include "vdstomgr/platform/dao/sqlite/database_file.h"
#include "vdstomgr/platform/dao/sqlite/errors.h"
#include "vdstomgr/platform/dao/sqlite/open.h"

namespace vdstomgr::sqlite {
namespace {

constexpr int kPagesPerStep = 1024;

struct BackupCloser {
  void operator()(sqlite3_backup* backup) const { sqlite3_backup_finish(backup); }
};
using BackupHandle = std::unique_ptr<sqlite3_backup, BackupCloser>;

/// False when the caller has enough of it.
bool CopyPages(sqlite3* from, sqlite3* to, const std::string& path,
               const dao::CopyProgress& progress) {
  const BackupHandle backup(sqlite3_backup_init(to, "main", from, "main"));
  if (!backup) ThrowEngineError(to, sqlite3_errcode(to), path);
  for (int code = SQLITE_OK; code != SQLITE_DONE;) {
    code = sqlite3_backup_step(backup.get(), kPagesPerStep);
    if (code != SQLITE_OK && code != SQLITE_DONE) ThrowEngineError(to, code, path);
    const int count = sqlite3_backup_pagecount(backup.get());
    if (progress && !progress(count - sqlite3_backup_remaining(backup.get()), count)) return false;
  }
  return true;
}

void RequireIntegrity(sqlite3* db, const std::string& path) {
  sqlite3_stmt* raw = nullptr;
  Check(db, sqlite3_prepare_v2(db, "PRAGMA quick_check(1)", -1, &raw, nullptr), path);
  const StatementHandle statement(raw);
  const int code = sqlite3_step(raw);
  if (code != SQLITE_ROW) ThrowEngineError(db, code, path);
  const auto* verdict = reinterpret_cast<const char*>(sqlite3_column_text(raw, 0));
  if (verdict == nullptr || std::string_view(verdict) != "ok") {
    dao::Throw(dao::Error::FileDamaged, path);
  }
}

}  // namespace

void Connection::HoldState() {
  Run("BEGIN");
  Run("SELECT count(*) FROM sqlite_schema");  // the engine fixes what is read at the first reading
}

bool Connection::CopyTo(const std::string& path, std::string_view password,
                        const dao::CopyProgress& progress) {
  DatabaseHandle copy = OpenCopy(path, password);
  try {
    const bool is_whole = CopyPages(db_.get(), copy.get(), path, progress);
    if (is_whole) RequireIntegrity(copy.get(), path_);
    copy.reset();
    if (!is_whole) RemoveFiles(path);
    return is_whole;
  } catch (...) {
    copy.reset();
    RemoveFiles(path);
    throw;
  }
}

}  // namespace vdstomgr::sqlite
