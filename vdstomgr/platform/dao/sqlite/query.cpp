#include "vdstomgr/platform/dao/sqlite/query.h"

#include <sqlite3.h>

#include <algorithm>
#include <cassert>
#include <utility>

#include "vdstomgr/platform/dao/sqlite/connection.h"
#include "vdstomgr/platform/dao/sqlite/errors.h"
#include "vdstomgr/platform/dao/sqlite/table_writer.h"

namespace vdstomgr::sqlite {
namespace {

using dao::Error;
using dao::Kind;

std::string_view Bytes(sqlite3_value* value, const void* bytes) {
  return {static_cast<const char*>(bytes), static_cast<size_t>(sqlite3_value_bytes(value))};
}

/// The bytes that lie in the page: read as a text they would be copied, to put a zero behind them.
const void* TextOf(sqlite3_value* value) {
  return sqlite3_value_encoding(value) == SQLITE_UTF8 ? sqlite3_value_blob(value)
                                                      : sqlite3_value_text(value);
}

dao::Field ReadField(sqlite3_stmt* statement, int column) {
  sqlite3_value* const value = sqlite3_column_value(statement, column);
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
      return {Kind::Integer, sqlite3_value_int64(value), 0, {}};
    case SQLITE_FLOAT:
      return {Kind::Real, 0, sqlite3_value_double(value), {}};
    case SQLITE_TEXT:
      return {Kind::Text, 0, 0, Bytes(value, TextOf(value))};
    case SQLITE_BLOB:
      return {Kind::Binary, 0, 0, Bytes(value, sqlite3_value_blob(value))};
    default:
      return {};
  }
}

dao::Value Keep(const dao::Field& field) {
  return {field.kind, field.integer, field.real, std::string(field.bytes)};
}

dao::Field Show(const dao::Value& value) {
  return {value.kind, value.integer, value.real, value.bytes};
}

}  // namespace

Query::Query(Connection& connection, std::unique_ptr<Statement> statement,
             std::unique_ptr<TextSearch> search)
    : connection_(&connection),
      plan_(statement->SharedPlan()),
      search_(std::move(search)),
      statement_(std::move(statement)) {
  connection.Enlist(this);
}

Query::~Query() {
  if (connection_) connection_->Delist(this);
}

void Query::Abandon() {
  connection_ = nullptr;
  statement_.reset();
  walk_.reset();
  search_.reset();
  fetched_.reset();
}

Connection& Query::Db() const {
  if (!connection_) dao::Throw(Error::ObjectClosed);
  return *connection_;
}

bool Query::AtEnd() {
  if (state_ == State::Before) Step();
  return state_ == State::End;
}

void Query::MoveNext() {
  if (AtEnd()) dao::Throw(Error::NoCurrentRecord);
  if (state_ == State::Live) return Step();
  fetched_.reset();
  if (++position_ == noted_.size()) End();
}

void Query::Restart() {
  Db();
  End();
  if (search_ && !search_->IsFirstWalk()) statement_ = search_->StartWalk();
  state_ = State::Before;
}

// The statement with its literals in its text, as a query of its own: so the engine itself counts
// off the rows before, in an index where one has the order.
void Query::Window(int first, int count) {
  assert(state_ == State::Before && first >= 0 && count >= 0);
  const std::unique_ptr<char, decltype(&sqlite3_free)> whole(
      sqlite3_expanded_sql(statement_->Handle()), &sqlite3_free);
  if (!whole) throw std::bad_alloc();
  statement_ =
      Db().PrepareOwn("SELECT * FROM (" + std::string(whole.get()) + ") LIMIT ?1 OFFSET ?2");
  sqlite3_bind_int(statement_->Handle(), 1, count);
  sqlite3_bind_int(statement_->Handle(), 2, first);
}

void Query::Step() {
  sqlite3* db = Db().Handle();
  const int code = NextRow();
  if (code == SQLITE_ROW) {
    state_ = State::Live;
    return;
  }
  state_ = State::End;
  if (code == SQLITE_DONE) return End();
  const struct Ending {
    Query* query;
    ~Ending() { query->End(); }
  } ending{this};
  ThrowEngineError(db, code, "");
}

// The rows of a search's statements one after the other, without what walks have shown already.
int Query::NextRow() {
  for (;;) {
    const int code = sqlite3_step(statement_->Handle());
    if (!search_) return code;
    if (code == SQLITE_DONE && GoOnWith(search_->GoOn())) continue;
    if (code != SQLITE_ROW) return code;
    if (search_->TakePause()) {
      GoOnWith(search_->AskIndex());
      continue;
    }
    const std::int64_t key = sqlite3_column_int64(statement_->Handle(), plan_->columns.Count());
    if (search_->IsWalk()) {
      shown_.push_back(key);
      return code;
    }
    if (!std::ranges::binary_search(shown_, key)) return code;
  }
}

// The first walk is kept, so that all see the same state of the file.
bool Query::GoOnWith(std::unique_ptr<Statement> next) {
  if (!next) return false;
  if (!walk_) walk_ = std::move(statement_);
  statement_ = std::move(next);
  std::ranges::sort(shown_);
  return true;
}

// Lets the live statement go, and with it the engine's hold on this state of the file.
void Query::End() {
  LetGo();
  fetched_.reset();
  noted_.clear();
  position_ = 0;
  state_ = State::End;
}

void Query::LetGo() {
  if (statement_) sqlite3_reset(statement_->Handle());
  if (search_) search_->LetGo();
  walk_.reset();
  shown_.clear();
}

dao::Field Query::Get(int column) {
  assert(column >= 0 && column < Columns().Count());
  if (AtEnd()) dao::Throw(Error::NoCurrentRecord);
  if (state_ == State::Live) return ReadField(statement_->Handle(), column);
  if (!HasRowKeys()) return Show(CurrentRow().values[static_cast<size_t>(column)]);
  FetchCurrentRow();
  return ReadField(fetched_->Handle(), column);
}

void Query::NoteRemainingRows() {
  fetched_.reset();  // is read afresh when it is asked for again
  if (state_ != State::Live) return;
  std::vector<NotedRow> rows;
  int code = SQLITE_ROW;
  for (; code == SQLITE_ROW; code = NextRow()) {
    rows.push_back(NoteCurrentRow());
  }
  LetGo();
  if (code != SQLITE_DONE) ThrowEngineError(Db().Handle(), code, "");
  noted_ = std::move(rows);
  position_ = 0;
  state_ = State::Noted;
}

Query::NotedRow Query::NoteCurrentRow() const {
  sqlite3_stmt* row = statement_->Handle();
  NotedRow noted;
  if (HasRowKeys()) {
    noted.key = sqlite3_column_int64(row, plan_->columns.Count());
    for (const int column : plan_->key_columns) {
      noted.values.push_back(Keep(ReadField(row, column)));
    }
    return noted;
  }
  for (int column = 0; column < plan_->columns.Count(); ++column) {
    noted.values.push_back(Keep(ReadField(row, column)));
  }
  return noted;
}

Query::NotedRow& Query::CurrentRow() {
  assert(state_ == State::Noted && position_ < noted_.size());
  return noted_[position_];
}

void Query::FetchCurrentRow() {
  if (fetched_) return;
  const NotedRow& row = CurrentRow();
  auto statement = Db().PrepareOwn(plan_->row_sql);
  sqlite3_bind_int64(statement->Handle(), 1, row.key);
  const int code = sqlite3_step(statement->Handle());
  if (code != SQLITE_ROW && code != SQLITE_DONE) ThrowEngineError(Db().Handle(), code, "");
  fetched_ = std::move(statement);
  if (row.deleted || code == SQLITE_DONE || !IsStillTheSameRow(row)) {
    fetched_.reset();
    dao::Throw(Error::RecordDeleted);
  }
}

// The engine gives the row key of a deleted row to a new one; the primary key tells them apart.
bool Query::IsStillTheSameRow(const NotedRow& row) const {
  for (size_t i = 0; i < row.values.size(); ++i) {
    if (row.values[i] != ReadField(fetched_->Handle(), plan_->key_columns[i])) return false;
  }
  return true;
}

std::int64_t Query::CurrentKey() {
  if (!IsUpdatable()) dao::Throw(Error::ReadOnly);
  if (AtEnd()) dao::Throw(Error::NoCurrentRecord);
  if (state_ == State::Live) {
    return sqlite3_column_int64(statement_->Handle(), plan_->columns.Count());
  }
  FetchCurrentRow();
  return CurrentRow().key;
}

void Query::Insert(const dao::RowDraft& row) {
  if (!IsUpdatable()) dao::Throw(Error::ReadOnly);
  const std::int64_t key = Db().Writer(plan_->editable_table).Insert(plan_, row);
  if (state_ == State::Noted) noted_.push_back({key, {}, false});
}

void Query::Update(const dao::RowDraft& row) {
  const std::int64_t key = CurrentKey();
  Db().Writer(plan_->editable_table).Update(plan_, row, key);
  if (state_ == State::Noted) CurrentRow().values.clear();  // the key columns may have changed
}

void Query::Delete() {
  const std::int64_t key = CurrentKey();
  Db().Writer(plan_->editable_table).Delete(key);
  if (state_ == State::Noted) CurrentRow().deleted = true;
}

}  // namespace vdstomgr::sqlite
