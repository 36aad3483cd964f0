#include "vdstomgr/platform/dao/sqlite/compiler.h"

#include <sqlite3.h>

#include <algorithm>
#include <cassert>
#include <vector>

#include "vdstomgr/platform/dao/dao_exception.h"
#include "vdstomgr/platform/dao/jet/parser.h"
#include "vdstomgr/platform/dao/sqlite/errors.h"
#include "vdstomgr/platform/dao/sqlite/schema_cache.h"
#include "vdstomgr/platform/dao/sqlite/sql_text.h"

namespace vdstomgr::sqlite {
namespace {

constexpr size_t kMostParameters = 1000;  // statements with more literals keep them in their text
constexpr std::string_view kUnknownColumn = "no such column: ";

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

Compiler::Compiled Compiler::Compile(std::string_view shape, std::span<const jet::Literal> literals,
                                     dao::RunMode mode,
                                     std::shared_ptr<const Plan> known_plan) const {
  const jet::Statement tree = jet::Parse(shape, literals);
  PrintOptions options;
  options.skip_failing_rows = mode == dao::RunMode::SkipFailingRows;
  if (literals.size() > kMostParameters) options.inline_literals = literals;
  options.literals = static_cast<int>(literals.size());
  options.searches_texts = options.inline_literals.empty();
  Printed printed;
  StatementHandle handle = PrepareTree(tree, options, printed);
  if (printed.text_query && SortsRows(printed.sql)) {  // a pause would be sorted with them
    options.searches_texts = false;
    handle = PrepareTree(tree, options, printed);
  }
  assert(!known_plan || known_plan->kind == printed.kind);
  auto plan = known_plan ? std::move(known_plan) : MakePlan(handle.get(), printed);
  // A schema statement's literals are part of what it means, so another one must not find it.
  const bool serves_others =
      options.inline_literals.empty() && printed.kind != StatementKind::Schema;
  return {std::make_unique<Statement>(std::move(plan), std::move(handle)), serves_others};
}

// The engine names one unknown column at a time; the dialect's error counts them all.
StatementHandle Compiler::PrepareTree(const jet::Statement& tree, PrintOptions options,
                                      Printed& printed) const {
  std::vector<std::string> unknown;
  for (;;) {
    options.unknown_columns = unknown;
    printed = Print(tree, schema_, options);
    try {
      StatementHandle handle = Prepare(printed.sql);
      if (unknown.empty()) return handle;
      break;
    } catch (const CDaoException&) {
      const std::string_view message = sqlite3_errmsg(db_);
      if (!message.starts_with(kUnknownColumn)) throw;
      std::string column = UnknownColumn(message);
      if (std::find(unknown.begin(), unknown.end(), column) != unknown.end()) break;
      unknown.push_back(std::move(column));
    }
  }
  dao::Throw(dao::Error::TooFewParameters, std::to_string(unknown.size()));
}

StatementHandle Compiler::Prepare(const std::string& sql) const {
  sqlite3_stmt* raw = nullptr;
  const int code = sqlite3_prepare_v3(db_, sql.c_str(), static_cast<int>(sql.size()) + 1,
                                      SQLITE_PREPARE_PERSISTENT, &raw, nullptr);
  StatementHandle handle(raw);
  Check(db_, code, sql);
  return handle;
}

bool Compiler::SortsRows(const std::string& sql) const {
  const StatementHandle plan = Prepare("EXPLAIN QUERY PLAN " + sql);
  while (sqlite3_step(plan.get()) == SQLITE_ROW) {
    const auto* step = reinterpret_cast<const char*>(sqlite3_column_text(plan.get(), 3));
    if (step && std::string_view(step).find("TEMP B-TREE") != std::string_view::npos) return true;
  }
  return false;
}

std::shared_ptr<const Plan> Compiler::MakePlan(sqlite3_stmt* statement,
                                               const Printed& printed) const {
  auto plan = std::make_shared<Plan>();
  plan->kind = printed.kind;
  plan->editable_table = printed.editable_table;
  plan->text_query = printed.text_query;
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
void Compiler::DescribeRows(Plan& plan) const {
  const dao::TableSchema* table =
      plan.editable_table.empty() ? nullptr : schema_.FindTable(plan.editable_table);
  if (!table) return;
  for (int i = 0; i < plan.columns.Count(); ++i) {
    const dao::ColumnSchema* column = table->Find(plan.columns.At(i).name);
    if (!column) return;
    if (column->key) plan.key_columns.push_back(i);
  }
  const auto name = [](const dao::ColumnSchema& column) { return QuoteName(column.name); };
  plan.row_sql = "SELECT " + Join(plan.columns.All(), ", ", name) + " FROM " +
                 QuoteName(table->name) + " WHERE rowid = ?1";
}

}  // namespace vdstomgr::sqlite
