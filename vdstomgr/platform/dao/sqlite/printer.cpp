#include "vdstomgr/platform/dao/sqlite/printer.h"

#include <algorithm>

#include "vdstomgr/platform/dao/sqlite/sql_printer.h"
#include "vdstomgr/platform/dao/sqlite/sql_text.h"
#include "vdstomgr/platform/dao/sqlite/text_index.h"
#include "vdstomgr/platform/text/ascii.h"

namespace vdstomgr::sqlite {
namespace {

bool IsOwnColumn(const jet::SelectItem& item) {
  if (item.all) return true;
  const auto* column = std::get_if<jet::ColumnRef>(&item.value.node);
  return column && (item.alias.empty() || SameName(item.alias, column->name));
}

// The one source whose rows the query shows as they are, or null.
const jet::Source* EditableSource(const jet::Select& select) {
  if (select.from.sources.size() != 1) return nullptr;
  const jet::Source& source = select.from.sources.front().source;
  const bool shows_rows = !select.distinct && select.group_by.empty() && !select.having &&
                          select.unions.empty() && !(select.top && !select.order_by.empty()) &&
                          std::all_of(select.items.begin(), select.items.end(), IsOwnColumn);
  return shows_rows && !source.table.empty() ? &source : nullptr;
}

// Do the rows stand in the order of that column?
bool IsInOrderOf(const dao::ColumnSchema& column, const jet::Select& select) {
  if (select.order_by.empty() || select.order_by.front().descending) return false;
  const auto* key = std::get_if<jet::ColumnRef>(&select.order_by.front().value.node);
  return key && SameName(key->name, column.name);
}

struct StatementPrinter {
  const dao::SchemaView& schema;
  const PrintOptions& options;
  SqlPrinter printer{schema, options};

  Printed operator()(const jet::Select& select) const {
    const jet::Source* source = EditableSource(select);
    if (!source) return {printer.Query(select, {}), StatementKind::Select, {}, {}};
    const auto& table = RequireTable(schema, source->table, dao::Error::UnknownTable);
    const QueryForm form{.rowid_of = source->alias.empty() ? table.name : source->alias};
    const auto texts = options.searches_texts && select.where ? FindTextFilter(*select.where, table)
                                                              : std::nullopt;
    if (texts) return Searching(select, table, *texts, form);
    return {printer.Query(select, form), StatementKind::Select, table.name, {}};
  }
  Printed Searching(const jet::Select& select, const dao::TableSchema& table,
                    const TextFilter& texts, QueryForm form) const {
    form.texts = &texts;
    const std::string walk = printer.Query(select, form);
    form.lists_keys = true;
    const std::string& column = texts.column->name;
    TextQuery query{.test = texts.test,
                    .parameter = options.literals + 1,
                    .walk_sql = walk,
                    .listed_sql = printer.Query(select, form),
                    .candidates_sql = TextIndex::CandidatesSql(table.name, column),
                    .matches_sql = TextIndex::MatchesSql(table.name, column),
                    .last_row_sql = "SELECT max(rowid) FROM " + QuoteName(table.name),
                    .changed_sql = TextIndex::ChangedSql(table.name, column),
                    .walk_on_sql = {},
                    .next_sql = {}};
    if (IsInOrderOf(*texts.column, select)) {
      form.lists_keys = false;
      form.begins_at_text = true;
      query.walk_on_sql = printer.Query(select, form);
      const std::string text = QuoteName(column);
      query.next_sql = "SELECT " + text + " FROM " + QuoteName(table.name) + " WHERE " + text +
                       " >= ?1 ORDER BY " + text + " LIMIT 1";
    }
    return {walk, StatementKind::Select, table.name, std::move(query)};
  }
  Printed operator()(const jet::Insert& insert) const {
    return {printer.Action(insert), StatementKind::Insert, {}, {}};
  }
  Printed operator()(const jet::Update& update) const {
    return {printer.Action(update), StatementKind::Update, {}, {}};
  }
  Printed operator()(const jet::Delete& statement) const {
    return {printer.Action(statement), StatementKind::Delete, {}, {}};
  }
  template <class SchemaStatement>
  Printed operator()(const SchemaStatement& statement) const {
    return {printer.Schema(statement), StatementKind::Schema, {}, {}};
  }
};

}  // namespace

Printed Print(const jet::Statement& statement, const dao::SchemaView& schema,
              const PrintOptions& options) {
  return std::visit(StatementPrinter{schema, options}, statement);
}

}  // namespace vdstomgr::sqlite
