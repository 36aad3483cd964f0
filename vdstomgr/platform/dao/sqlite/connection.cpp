#include "vdstomgr/platform/dao/sqlite/connection.h"

#include <sqlite3.h>

#include <algorithm>
#include <cassert>

#include "vdstomgr/platform/dao/dao_exception.h"
#include "vdstomgr/platform/dao/sqlite/errors.h"
#include "vdstomgr/platform/dao/sqlite/query.h"
#include "vdstomgr/platform/dao/sqlite/table_writer.h"
#include "vdstomgr/platform/dao/sqlite/text_index.h"
#include "vdstomgr/platform/dao/sqlite/text_search.h"

namespace vdstomgr::sqlite {
namespace {

constexpr int kWritesPerCommit = 4096;  // a longer group is committed in pieces of this many

int BindLiteral(sqlite3_stmt* statement, int place, const jet::Literal& literal) {
  switch (literal.kind) {
    case jet::Literal::Kind::Text:
      return sqlite3_bind_text64(statement, place, literal.text.data(), literal.text.size(),
                                 SQLITE_TRANSIENT, SQLITE_UTF8);
    case jet::Literal::Kind::Integer:
      return sqlite3_bind_int64(statement, place, literal.integer);
    case jet::Literal::Kind::Real:
      return sqlite3_bind_double(statement, place, literal.real);
  }
  return SQLITE_MISUSE;
}

}  // namespace

void DatabaseCloser::operator()(sqlite3* db) const {
  sqlite3_close_v2(db);
}

Connection::Connection(DatabaseHandle db, std::string path)
    : path_(std::move(path)),
      db_(std::move(db)),
      schema_(db_.get()),
      compiler_(db_.get(), schema_),
      begin_(compiler_.Prepare("BEGIN IMMEDIATE")),
      commit_(compiler_.Prepare("COMMIT")) {}

Connection::~Connection() {
  for (Query* query : queries_) query->Abandon();
}

int Connection::Execute(std::string_view sql, dao::RunMode mode) {
  MendTextIndexes();
  const auto statement = Prepare(sql, mode);
  const StatementKind kind = statement->GetPlan().kind;
  if (kind == StatementKind::Select) dao::Throw(dao::Error::NotAnActionQuery);
  const int changed = Write(statement->Handle());
  if (kind != StatementKind::Schema) return changed;
  SchemaChanged();
  return 0;
}

std::unique_ptr<dao::Query> Connection::Open(std::string_view sql) {
  MendTextIndexes();
  auto statement = Prepare(sql, dao::RunMode::WholeStatement);
  if (statement->GetPlan().kind != StatementKind::Select) {
    dao::Throw(dao::Error::InvalidOperation);
  }
  std::unique_ptr<TextSearch> search;
  if (statement->GetPlan().text_query) {
    search = std::make_unique<TextSearch>(*this, statement->SharedPlan(), shape_.Literals());
    search->Bind(statement->Handle());
  }
  return std::make_unique<Query>(*this, std::move(statement), std::move(search));
}

void Connection::Bind(sqlite3_stmt* statement, std::span<const jet::Literal> literals) {
  const auto places = static_cast<size_t>(sqlite3_bind_parameter_count(statement));
  for (size_t i = 0; i < std::min(places, literals.size()); ++i) {
    Check(db_.get(), BindLiteral(statement, static_cast<int>(i) + 1, literals[i]), "");
  }
}

void Connection::IndexTexts(std::string_view table, std::string_view column) {
  if (!TextIndex(*this, table, column).IsCurrent()) MakeTextIndex(table, column);
  const std::pair<std::string, std::string> known(table, column);
  if (std::ranges::find(text_indexes_, known) == text_indexes_.end()) {
    text_indexes_.push_back(known);
  }
}

void Connection::MakeTextIndex(std::string_view table, std::string_view column) {
  BeginGroup();
  try {
    TextIndex(*this, table, column).MakeAnew();
  } catch (...) {
    EndGroup();
    throw;
  }
  EndGroup();
  SchemaChanged();
}

void Connection::MendTextIndexes() {
  if (!doubts_text_indexes_ || !queries_.empty()) return;
  doubts_text_indexes_ = false;
  for (const auto& [table, column] : text_indexes_) MakeTextIndex(table, column);
}

void Connection::EndGroup() {
  assert(group_depth_ > 0);
  if (--group_depth_ == 0 && !sqlite3_get_autocommit(db_.get())) Commit();
}

// The engine cannot re-encrypt a file that is in its write-ahead mode, and it attaches the new form
// of the file while it copies.
void Connection::SetPassword(std::string_view password) {
  Run("PRAGMA journal_mode = DELETE");
  sqlite3_limit(db_.get(), SQLITE_LIMIT_ATTACHED, 1);
  const int code = sqlite3_rekey(db_.get(), password.data(), static_cast<int>(password.size()));
  sqlite3_limit(db_.get(), SQLITE_LIMIT_ATTACHED, 0);
  Check(db_.get(), code, path_);
  Run("PRAGMA journal_mode = WAL");
}

std::unique_ptr<Statement> Connection::Prepare(std::string_view sql, dao::RunMode mode) {
  StatementCache& cache = mode == dao::RunMode::SkipFailingRows ? skipping_ : whole_;
  shape_.Scan(sql);
  auto statement = cache.Take(shape_.Key());
  if (!statement) {
    auto compiled =
        compiler_.Compile(shape_.Key(), shape_.Literals(), mode, cache.FindPlan(shape_.Key()));
    statement = std::move(compiled.statement);
    if (compiled.serves_others) cache.Adopt(shape_.Key(), *statement);
  }
  Bind(statement->Handle(), shape_.Literals());
  return statement;
}

std::unique_ptr<Statement> Connection::PrepareOwn(const std::string& sql) {
  if (auto statement = own_.Take(sql)) return statement;
  auto statement = std::make_unique<Statement>(std::make_shared<Plan>(), compiler_.Prepare(sql));
  own_.Adopt(sql, *statement);
  return statement;
}

TableWriter& Connection::Writer(const std::string& table) {
  std::unique_ptr<TableWriter>& writer = writers_[table];
  if (!writer) writer = std::make_unique<TableWriter>(*this, table);
  return *writer;
}

int Connection::Write(sqlite3_stmt* statement) {
  for (Query* query : queries_) query->NoteRemainingRows();
  if (group_depth_ > 0 && sqlite3_get_autocommit(db_.get())) Begin();
  const int code = sqlite3_step(statement);
  if (code == SQLITE_CORRUPT_VTAB) DoubtTextIndexes();
  if (code != SQLITE_DONE) {
    const struct Reset {
      sqlite3_stmt* statement;
      ~Reset() { sqlite3_reset(statement); }
    } reset{statement};
    ThrowEngineError(db_.get(), code, path_);
  }
  const int changed = sqlite3_changes(db_.get());
  sqlite3_reset(statement);
  const bool in_transaction = !sqlite3_get_autocommit(db_.get());
  if (in_transaction && ++writes_in_transaction_ >= kWritesPerCommit) Commit();
  return changed;
}

void Connection::Run(const char* sql) {
  Check(db_.get(), sqlite3_exec(db_.get(), sql, nullptr, nullptr, nullptr), path_);
}

void Connection::Begin() {
  const int code = sqlite3_step(begin_.get());
  sqlite3_reset(begin_.get());
  if (code != SQLITE_DONE) ThrowEngineError(db_.get(), code, path_);
  writes_in_transaction_ = 0;
}

// A row that could not be put into its index stays noted.
void Connection::TakeTextChanges() {
  if (text_indexes_.empty()) return;
  Run("SAVEPOINT texts");
  try {
    for (const auto& [table, column] : text_indexes_) TextIndex(*this, table, column).TakeChanges();
  } catch (const CDaoException&) {
    DoubtTextIndexes();
    Run("ROLLBACK TO texts");
  }
  Run("RELEASE texts");
}

void Connection::Commit() {
  writes_in_transaction_ = 0;
  TakeTextChanges();
  const int code = sqlite3_step(commit_.get());
  sqlite3_reset(commit_.get());
  if (code == SQLITE_DONE) return;
  try {
    ThrowEngineError(db_.get(), code, path_);
  } catch (...) {
    // What could not be committed must not stay open and swallow the writes that follow.
    if (!sqlite3_get_autocommit(db_.get())) {
      sqlite3_exec(db_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
    }
    throw;
  }
}

void Connection::SchemaChanged() {
  writers_.clear();
  for (StatementCache* cache : {&whole_, &skipping_, &own_}) cache->Clear();
  schema_.Clear();
}

}  // namespace vdstomgr::sqlite
