#include <algorithm>

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/sqlite/sql_printer.h"
#include "vdstomgr/platform/dao/sqlite/sql_text.h"
#include "vdstomgr/platform/text/ascii.h"

namespace vdstomgr::sqlite {
namespace {

using dao::ColumnSchema;
using dao::Error;
using dao::TableSchema;

using Columns = std::vector<const ColumnSchema*>;

void AddDestination(Columns& columns, const TableSchema& table, const std::string& name,
                    Error unknown, std::string_view unknown_subject) {
  const ColumnSchema* column = table.Find(name);
  if (!column) dao::Throw(unknown, unknown_subject);
  if (std::find(columns.begin(), columns.end(), column) != columns.end()) {
    dao::Throw(Error::DuplicateDestination, name);
  }
  columns.push_back(column);
}

Columns Destinations(const jet::Insert& insert, const TableSchema& table) {
  Columns columns;
  for (const std::string& name : insert.columns) {
    AddDestination(columns, table, name, Error::UnknownInsertField, name);
  }
  if (!insert.columns.empty()) return columns;
  for (const ColumnSchema& column : table.columns) columns.push_back(&column);
  return columns;
}

// Without a list of columns the rows go by position; names that disagree would be a mistake.
void CheckNames(const std::vector<OutputColumn>& outputs, const Columns& columns) {
  for (size_t i = 0; i < outputs.size(); ++i) {
    if (!SameName(outputs[i].name, columns[i]->name)) {
      dao::Throw(Error::UnknownInsertField, outputs[i].name);
    }
  }
}

bool IsNullConstant(const jet::Expr& expr) {
  const auto* constant = std::get_if<jet::Constant>(&expr.node);
  return constant && *constant == jet::Constant::Null;
}

// No index leads to the rows that a sub-query leaves out; a narrow one can be read instead of the
// whole table, but the engine does that for queries only.
bool IsExclusion(const jet::ExprPtr& condition) {
  const auto* in = condition ? std::get_if<jet::InSelect>(&condition->node) : nullptr;
  return in && in->negated;
}

std::string OrIgnore(const PrintOptions& options) {
  return options.skip_failing_rows ? " OR IGNORE" : "";
}

}  // namespace

// The engine stores what it cannot convert; the functions convert as the dialect does, and what
// still does not fit fails the column's check.
std::string SqlPrinter::Stored(const jet::Expr& value, dao::ColumnType type,
                               const std::vector<VisibleSource>& sources) const {
  const std::string sql = Bare(value);
  if (IsNullConstant(value)) return sql;
  const auto value_type = TypeOf(value, sources);
  if (IsIntegerType(type) && !IsIntegerType(value_type)) return "jet_integer(" + sql + ")";
  const bool is_text =
      value_type == dao::ColumnType::Text || value_type == dao::ColumnType::LongText;
  return type == dao::ColumnType::Double && is_text ? "jet_real(" + sql + ")" : sql;
}

std::string SqlPrinter::Action(const jet::Insert& insert) const {
  const TableSchema& table = RequireTable(schema_, insert.table, Error::UnknownOutputTable);
  const Columns columns = Destinations(insert, table);
  std::string sql = "INSERT" + OrIgnore(options_) + " INTO " + QuoteName(table.name) + " (" +
                    Join(columns, ", ", [](const auto* c) { return QuoteName(c->name); }) + ") ";
  if (insert.select) {
    if (insert.columns.empty()) {
      const auto outputs = OutputColumns(*insert.select, schema_);
      if (outputs.size() == columns.size()) CheckNames(outputs, columns);
    }
    return sql + InsertedRows(*insert.select, columns);
  }
  if (insert.values.size() != columns.size()) dao::Throw(Error::ValueCountMismatch);
  size_t next = 0;
  return sql + "VALUES (" +
         Join(insert.values, ", ",
              [&](const jet::Expr& value) { return Stored(value, columns[next++]->type, {}); }) +
         ")";
}

// The query as it stands when its columns are of the right types, otherwise each column converted
// around it.
std::string SqlPrinter::InsertedRows(const jet::Select& select, const Columns& columns) const {
  const std::vector<OutputColumn> outputs = OutputColumns(select, schema_);
  if (outputs.size() != columns.size()) dao::Throw(Error::ValueCountMismatch);
  bool converts = false;
  size_t next = 0;
  const std::string converted = Join(columns, ", ", [&](const ColumnSchema* column) {
    const bool fits = !IsIntegerType(column->type) || IsIntegerType(outputs[next].type);
    converts = converts || !fits;
    const std::string source = "\"c" + std::to_string(++next) + "\"";
    return fits ? source : "jet_integer(" + source + ")";
  });
  if (!converts) return Query(select, {});
  return "SELECT " + converted + " FROM (" + Query(select, {.numbered = true}) + ")";
}

std::string SqlPrinter::Action(const jet::Update& update) const {
  const TableSchema& table = RequireTable(schema_, update.table, Error::UnknownTable);
  std::vector<VisibleSource> sources(1);
  sources[0].name = update.alias.empty() ? table.name : update.alias;
  for (const ColumnSchema& column : table.columns) {
    sources[0].columns.push_back({column.name, column.name, sources[0].name, column.type});
  }
  Columns columns;
  for (const auto& assignment : update.assignments) {
    AddDestination(columns, table, assignment.column, Error::TooFewParameters, "1");
  }
  size_t next = 0;
  const auto print = [&](const jet::Assignment& assignment) {
    const ColumnSchema& column = *columns[next++];
    return QuoteName(column.name) + " = " + Stored(assignment.value, column.type, sources);
  };
  return "UPDATE" + OrIgnore(options_) + " " + QuoteName(table.name) +
         (update.alias.empty() ? "" : " AS " + QuoteName(update.alias)) + " SET " +
         Join(update.assignments, ", ", print) + Where(update.where);
}

const VisibleSource& SqlPrinter::DeleteTarget(const jet::Delete& statement,
                                              const std::vector<VisibleSource>& sources) const {
  if (statement.target.empty() && sources.size() > 1) {
    dao::Throw(Error::SyntaxInFrom, "DELETE");  // which of them?
  }
  const auto target = std::find_if(sources.begin(), sources.end(), [&](const auto& source) {
    return statement.target.empty() || SameName(source.name, statement.target);
  });
  if (target == sources.end()) dao::Throw(Error::UnknownTable, statement.target);
  if (!target->table) dao::Throw(Error::NotUpdatable);
  return *target;
}

std::string SqlPrinter::Action(const jet::Delete& statement) const {
  const std::vector<VisibleSource> sources = VisibleSources(statement.from, schema_);
  const VisibleSource& target = DeleteTarget(statement, sources);
  const jet::Source& first = statement.from.sources.front().source;
  if (sources.size() == 1 && !first.group && !IsExclusion(statement.where)) {
    return "DELETE FROM " + Source(first) + Where(statement.where);
  }
  return "DELETE FROM " + QuoteName(target.table->name) + " WHERE rowid IN (SELECT " +
         QuoteName(target.name) + ".rowid FROM " + Sources(statement.from) +
         Where(statement.where) + ")";
}

}  // namespace vdstomgr::sqlite
