#include "bench/peer_database.h"

#include <sqlite3.h>

#include <cstdlib>

#include "vdstomgr/platform/dao/sqlite/functions.h"
#include "vdstomgr/platform/text/case_folding.h"
#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/platform/utility/utility_lib.h"

namespace bench {
namespace {

int CompareText(void*, int size_a, const void* a, int size_b, const void* b) {
  return vdstomgr::CompareFolded({static_cast<const char*>(a), size_t(size_a)},
                                 {static_cast<const char*>(b), size_t(size_b)});
}

void InstallTextOrder(sqlite3* db) {
  sqlite3_create_collation(db, vdstomgr::kTextOrderName, SQLITE_UTF8, nullptr, CompareText);
}

[[noreturn]] void Die(sqlite3* db) {
  std::fprintf(stderr, "peer: %s\n", sqlite3_errmsg(db));
  std::abort();
}

}  // namespace

void PeerStatementDeleter::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

PeerDatabase::PeerDatabase(const std::string& path, Like like) {
  if (sqlite3_open_v2(path.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr)) {
    Die(db_);
  }
  // The dialect's LIKE takes the place of the engine's own on a connection for good.
  like == Like::Dialects ? vdstomgr::sqlite::InstallFunctions(db_) : InstallTextOrder(db_);
  sqlite3_exec(db_, "PRAGMA cache_size = -65536; PRAGMA journal_mode = WAL", nullptr, nullptr,
               nullptr);
  begin_ = Prepare("BEGIN IMMEDIATE");
  commit_ = Prepare("COMMIT");
}

// Statements that outlive this object keep the engine's handle until they go.
PeerDatabase::~PeerDatabase() {
  sqlite3_close_v2(db_);
}

PeerStatement PeerDatabase::Prepare(const std::string& sql) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v3(db_, sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr)) {
    Die(db_);
  }
  return PeerStatement(statement);
}

bool PeerDatabase::Run(const PeerStatement& statement) {
  const bool done = sqlite3_step(statement.get()) == SQLITE_DONE;
  sqlite3_reset(statement.get());
  return done;
}

bool PeerDatabase::Change(const PeerStatement& statement) {
  return Run(statement) && sqlite3_changes(db_) > 0;
}

Binder& Binder::Text(const char* process_text) {
  text_.clear();
  vdstomgr::AppendUtf8(process_text, text_);
  return Bind(text_.data(), static_cast<int>(text_.size()));
}

Binder& Binder::Number(std::int64_t value) {
  sqlite3_bind_int64(statement_, ++place_, value);
  return *this;
}

Binder& Binder::Time(std::int32_t time) {
  const CString text = CUtilityLib::GetTime(time);
  return Bind(text, text.GetLength());
}

Binder& Binder::TimeAndDay(std::int32_t time) {
  const CString text = CUtilityLib::GetTime(time);
  return Bind(text, text.GetLength()).Bind(text, 10);
}

Binder& Binder::Size(std::uint64_t size) {
  const CString text = CUtilityLib::GetString(size);
  return Bind(text, text.GetLength());
}

Binder& Binder::Bind(const char* text, int size) {
  sqlite3_bind_text(statement_, ++place_, text, size, SQLITE_TRANSIENT);
  return *this;
}

const char* Reader::Text() {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, ++place_));
  text_.clear();
  if (text) {
    const auto size = static_cast<size_t>(sqlite3_column_bytes(statement_, place_));
    vdstomgr::AppendFromUtf8({text, size}, text_);
  }
  return text_.c_str();
}

std::int64_t Reader::Integer() {
  return sqlite3_column_int64(statement_, ++place_);
}

void Reader::Time(std::int32_t& target) {
  const std::int32_t time = CUtilityLib::GetTime(Text());
  target = time == -1 ? 0 : time;
}

std::uint64_t Reader::Size() {
  return CUtilityLib::StrToINT64(Text());
}

bool Next(const PeerStatement& query) {
  return sqlite3_step(query.get()) == SQLITE_ROW;
}

void Reset(const PeerStatement& query) {
  sqlite3_reset(query.get());
}

}  // namespace bench
