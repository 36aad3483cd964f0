#include "vdstomgr/platform/dao/sqlite/table_writer.h"

#include <sqlite3.h>

#include <cassert>

#include "vdstomgr/platform/dao/sqlite/connection.h"
#include "vdstomgr/platform/dao/sqlite/errors.h"
#include "vdstomgr/platform/dao/sqlite/sql_text.h"

namespace vdstomgr::sqlite {
namespace {

constexpr size_t kMostForms = 32;  // sets of columns per table; more would be a misuse

int BindValue(sqlite3_stmt* statement, int place, const dao::Value& value) {
  const auto size = static_cast<sqlite3_uint64>(value.bytes.size());
  switch (value.kind) {
    case dao::Kind::Integer:
      return sqlite3_bind_int64(statement, place, value.integer);
    case dao::Kind::Real:
      return sqlite3_bind_double(statement, place, value.real);
    case dao::Kind::Text:
      return sqlite3_bind_text64(statement, place, value.bytes.data(), size, SQLITE_STATIC,
                                 SQLITE_UTF8);
    case dao::Kind::Binary:
      return sqlite3_bind_blob64(statement, place, value.bytes.data(), size, SQLITE_STATIC);
    case dao::Kind::Null:
      return sqlite3_bind_null(statement, place);
  }
  return SQLITE_MISUSE;
}

// Binds the set values in column order; returns the next free place.
int BindRow(sqlite3* db, sqlite3_stmt* statement, const dao::RowDraft& row) {
  int place = 1;
  for (size_t i = 0; i < row.values.size(); ++i) {
    if (row.is_set[i]) Check(db, BindValue(statement, place++, row.values[i]), "");
  }
  return place;
}

}  // namespace

std::int64_t TableWriter::Insert(const std::shared_ptr<const Plan>& plan,
                                 const dao::RowDraft& row) {
  sqlite3_stmt* statement = FormFor(inserts_, plan, row, &TableWriter::InsertSql);
  BindRow(connection_.Handle(), statement, row);
  connection_.Write(statement);
  return sqlite3_last_insert_rowid(connection_.Handle());
}

void TableWriter::Update(const std::shared_ptr<const Plan>& plan, const dao::RowDraft& row,
                         std::int64_t key) {
  sqlite3_stmt* statement = FormFor(updates_, plan, row, &TableWriter::UpdateSql);
  const int key_place = BindRow(connection_.Handle(), statement, row);
  if (key_place == 1) return;  // no column was set
  Check(connection_.Handle(), sqlite3_bind_int64(statement, key_place, key), "");
  if (connection_.Write(statement) == 0) dao::Throw(dao::Error::RecordDeleted);
}

void TableWriter::Delete(std::int64_t key) {
  const auto statement =
      connection_.PrepareOwn("DELETE FROM " + QuoteName(table_) + " WHERE rowid = ?1");
  Check(connection_.Handle(), sqlite3_bind_int64(statement->Handle(), 1, key), "");
  if (connection_.Write(statement->Handle()) == 0) dao::Throw(dao::Error::RecordDeleted);
}

sqlite3_stmt* TableWriter::FormFor(std::vector<Form>& forms,
                                   const std::shared_ptr<const Plan>& plan,
                                   const dao::RowDraft& row, SqlWriter write_sql) {
  assert(row.is_set.size() == static_cast<size_t>(plan->columns.Count()));
  for (const Form& form : forms) {
    if (form.plan == plan && form.is_set == row.is_set) return form.statement.get();
  }
  std::vector<std::string> columns;
  for (size_t i = 0; i < row.is_set.size(); ++i) {
    if (row.is_set[i]) columns.push_back(plan->columns.At(static_cast<int>(i)).name);
  }
  if (forms.size() >= kMostForms) forms.erase(forms.begin());
  StatementHandle statement = connection_.PrepareToKeep((this->*write_sql)(columns));
  forms.push_back(Form{plan, row.is_set, std::move(statement)});
  return forms.back().statement.get();
}

std::string TableWriter::InsertSql(const std::vector<std::string>& columns) const {
  const std::string head = "INSERT INTO " + QuoteName(table_);
  if (columns.empty()) return head + " DEFAULT VALUES";
  const auto place = [](const std::string&) { return "?"; };
  return head + " (" + Join(columns, ", ", QuoteName) + ") VALUES (" + Join(columns, ", ", place) +
         ")";
}

std::string TableWriter::UpdateSql(const std::vector<std::string>& columns) const {
  const auto assign = [](const std::string& column) { return QuoteName(column) + " = ?"; };
  // Without a column to set there is nothing to run, but the form must still be a statement.
  const std::string list = columns.empty() ? "rowid = rowid" : Join(columns, ", ", assign);
  return "UPDATE " + QuoteName(table_) + " SET " + list + " WHERE rowid = ?";
}

}  // namespace vdstomgr::sqlite
