#include "vdstomgr/platform/dao/sqlite/connection.h"

#include <sqlite3.h>

#include <algorithm>

#include "vdstomgr/platform/dao/dao_exception.h"
#include "vdstomgr/platform/dao/jet/parser.h"
#include "vdstomgr/platform/dao/sqlite/errors.h"
#include "vdstomgr/platform/dao/sqlite/query.h"
#include "vdstomgr/platform/dao/sqlite/table_writer.h"

namespace vdstomgr::sqlite {
namespace {

constexpr int kWritesPerCommit = 4096;    // a longer group is committed in pieces of this many
constexpr size_t kMostParameters = 1000;  // statements with more literals keep them in their text
constexpr std::string_view kUnknownColumn = "no such column: ";

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

void BindLiterals(sqlite3* db, sqlite3_stmt* statement, std::span<const jet::Literal> literals) {
  const int places = sqlite3_bind_parameter_count(statement);
  for (int place = 1; place <= places; ++place) {
    Check(db, BindLiteral(statement, place, literals[static_cast<size_t>(place) - 1]), "");
  }
}

// The engine writes table.column, or "column" with a hint behind it.
std::string UnknownColumn(std::string_view message) {
  std::string_view name = message.substr(kUnknownColumn.size());
  if (name.starts_with('"')) {
    name.remove_prefix(1);
    return std::string(name.substr(0, name.find('"')));
  }
  const size_t point = name.rfind('.');
  return std::string(point == std::string_view::npos ? name : name.substr(point + 1));
}

dao::ColumnSchema DescribeOutput(sqlite3_stmt* statement, int position) {
  const char* name = sqlite3_column_name(statement, position);
  const char* type = sqlite3_column_decltype(statement, position);
  if (!name) throw std::bad_alloc();
  return ReadDeclaredType(name, type ? type : "").value_or(dao::ColumnSchema{.name = name});
}

}  // namespace

void DatabaseCloser::operator()(sqlite3* db) const {
  sqlite3_close_v2(db);
}

Connection::Connection(DatabaseHandle db, std::string path)
    : path_(std::move(path)),
      db_(std::move(db)),
      schema_(db_.get()),
      begin_(PrepareSql("BEGIN IMMEDIATE")),
      commit_(PrepareSql("COMMIT")) {}

Connection::~Connection() {
  for (Query* query : queries_) query->Abandon();
}

int Connection::Execute(std::string_view sql, bool skip_failing_rows) {
  const auto statement = Prepare(sql, skip_failing_rows);
  const StatementKind kind = statement->GetPlan().kind;
  if (kind == StatementKind::Select) dao::Throw(dao::Error::NotAnActionQuery);
  const int changed = Write(statement->Handle());
  if (kind != StatementKind::Schema) return changed;
  SchemaChanged();
  return 0;
}

std::unique_ptr<dao::Query> Connection::Open(std::string_view sql) {
  auto statement = Prepare(sql, false);
  if (statement->GetPlan().kind != StatementKind::Select) {
    dao::Throw(dao::Error::InvalidOperation);
  }
  return std::make_unique<Query>(*this, std::move(statement));
}

void Connection::EndGroup() {
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

std::unique_ptr<Statement> Connection::Prepare(std::string_view sql, bool skip_failing_rows) {
  shape_.Scan(sql);
  const std::span<const jet::Literal> literals = shape_.Literals();
  key_.assign(1, skip_failing_rows ? 'i' : 'f').append(shape_.Key());
  auto statement = statements_.Take(key_);
  if (!statement) statement = Compile(key_, literals, skip_failing_rows);
  BindLiterals(db_.get(), statement->Handle(), literals);
  return statement;
}

std::unique_ptr<Statement> Connection::PrepareOwn(const std::string& sql) {
  key_.assign(1, 'o').append(sql);
  if (auto statement = statements_.Take(key_)) return statement;
  auto statement = std::make_unique<Statement>(std::make_shared<Plan>(), PrepareSql(sql));
  statements_.Adopt(key_, *statement);
  return statement;
}

std::unique_ptr<Statement> Connection::Compile(std::string_view key,
                                               std::span<const jet::Literal> literals,
                                               bool skip_failing_rows) {
  const jet::Statement tree = jet::Parse(key.substr(1), literals);
  PrintOptions options;
  options.skip_failing_rows = skip_failing_rows;
  if (literals.size() > kMostParameters) options.inline_literals = literals;
  Printed printed;
  StatementHandle handle = PrepareTree(tree, options, printed);

  auto plan = statements_.FindPlan(key);
  if (!plan) plan = MakePlan(handle.get(), printed);
  auto statement = std::make_unique<Statement>(plan, std::move(handle));
  // A schema statement's literals are part of what it means, so another one must not find it.
  const bool is_shape = options.inline_literals.empty() && printed.kind != StatementKind::Schema;
  if (is_shape) statements_.Adopt(key, *statement);
  return statement;
}

// The engine names one unknown column at a time; the dialect's error counts them all.
StatementHandle Connection::PrepareTree(const jet::Statement& tree, PrintOptions options,
                                        Printed& printed) {
  std::vector<std::string> unknown;
  for (;;) {
    options.unknown_columns = unknown;
    printed = Print(tree, *this, options);
    try {
      StatementHandle handle = PrepareSql(printed.sql);
      if (unknown.empty()) return handle;
      break;
    } catch (const CDaoException&) {
      const std::string_view message = sqlite3_errmsg(db_.get());
      if (!message.starts_with(kUnknownColumn)) throw;
      std::string column = UnknownColumn(message);
      if (std::find(unknown.begin(), unknown.end(), column) != unknown.end()) break;
      unknown.push_back(std::move(column));
    }
  }
  dao::Throw(dao::Error::TooFewParameters, std::to_string(unknown.size()));
}

StatementHandle Connection::PrepareSql(const std::string& sql) {
  sqlite3_stmt* raw = nullptr;
  const int code = sqlite3_prepare_v3(db_.get(), sql.c_str(), static_cast<int>(sql.size()) + 1,
                                      SQLITE_PREPARE_PERSISTENT, &raw, nullptr);
  StatementHandle handle(raw);
  Check(db_.get(), code, path_);
  return handle;
}

std::shared_ptr<const Plan> Connection::MakePlan(sqlite3_stmt* statement,
                                                 const Printed& printed) const {
  auto plan = std::make_shared<Plan>();
  plan->kind = printed.kind;
  plan->editable_table = printed.editable_table;
  const int hidden = printed.editable_table.empty() ? 0 : 1;
  const int shown = sqlite3_column_count(statement) - hidden;
  std::vector<dao::ColumnSchema> columns;
  columns.reserve(static_cast<size_t>(shown));
  for (int i = 0; i < shown; ++i) columns.push_back(DescribeOutput(statement, i));
  plan->columns = dao::ColumnTable(std::move(columns));
  DescribeRows(*plan);
  return plan;
}

// How a row of an updatable query is found again: possible when all it shows are table columns.
void Connection::DescribeRows(Plan& plan) const {
  const dao::TableSchema* table =
      plan.editable_table.empty() ? nullptr : schema_.Find(plan.editable_table);
  if (!table) return;
  std::string list;
  for (int i = 0; i < plan.columns.Count(); ++i) {
    const dao::ColumnSchema* column = table->Find(plan.columns.At(i).name);
    if (!column) return;
    if (column->key) plan.key_columns.push_back(i);
    list += (list.empty() ? "\"" : ", \"") + column->name + "\"";
  }
  plan.row_sql = "SELECT " + list + " FROM \"" + table->name + "\" WHERE rowid = ?1";
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

void Connection::Commit() {
  writes_in_transaction_ = 0;
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
  statements_.Clear();
  schema_.Clear();
}

}  // namespace vdstomgr::sqlite
