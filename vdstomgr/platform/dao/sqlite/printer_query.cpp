#include <algorithm>
#include <array>
#include <set>

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/sqlite/sql_printer.h"
#include "vdstomgr/platform/dao/sqlite/sql_text.h"
#include "vdstomgr/platform/text/ascii.h"

namespace vdstomgr::sqlite {
namespace {

std::string Numbered(char letter, size_t index) {
  return std::string("\"") + letter + std::to_string(index + 1) + "\"";
}

std::string_view TextOf(jet::Join join) {
  constexpr std::array<std::string_view, 4> kTexts = {", ", " JOIN ", " LEFT JOIN ",
                                                      " RIGHT JOIN "};
  return kTexts[static_cast<size_t>(join)];
}

// The output column that a sort key names; outputs.size() when it names none.
size_t FindOutput(const jet::Expr& key, std::span<const OutputColumn> outputs) {
  const auto* column = std::get_if<jet::ColumnRef>(&key.node);
  if (!column || !column->table.empty()) return outputs.size();
  const auto found = std::find_if(outputs.begin(), outputs.end(), [&](const OutputColumn& output) {
    return SameName(output.name, column->name);
  });
  return static_cast<size_t>(found - outputs.begin());
}

bool HasWholeKey(const VisibleSource& source, const std::set<const OutputColumn*>& columns) {
  const auto is_key = [](const OutputColumn& column) { return column.stored->key; };
  return source.table && std::ranges::any_of(source.columns, is_key) &&
         std::ranges::all_of(source.columns, [&](const OutputColumn& column) {
           return !is_key(column) || columns.contains(&column);
         });
}

// Beside the whole key of a table its other columns tell no groups apart, and comparing their texts
// row by row may cost more than all the rest.
std::vector<const jet::Expr*> GroupKeys(const jet::Select& select, const dao::SchemaView& schema) {
  const std::vector<VisibleSource> sources = VisibleSources(select.from, schema);
  std::set<const OutputColumn*> named;
  for (const jet::Expr& key : select.group_by) named.insert(FindColumn(key, sources));
  std::set<const OutputColumn*> implied;
  for (const VisibleSource& source : sources) {
    if (!HasWholeKey(source, named)) continue;
    for (const OutputColumn& column : source.columns)
      if (!column.stored->key) implied.insert(&column);
  }
  std::vector<const jet::Expr*> keys;
  for (const jet::Expr& key : select.group_by)
    if (!implied.contains(FindColumn(key, sources))) keys.push_back(&key);
  return keys;
}

}  // namespace

std::string SqlPrinter::Query(const jet::Select& select, const QueryForm& form) const {
  if (select.top && !select.order_by.empty()) return TopWithTies(select, form);
  std::string sql = Core(select, form);
  for (const auto& arm : select.unions) {
    sql += (arm.keep_duplicates ? " UNION ALL " : " UNION ") + Core(arm.select, {});
  }
  if (form.keep_order && !select.order_by.empty()) {
    const auto numbered =
        form.numbered ? OutputColumns(select, schema_) : std::vector<OutputColumn>();
    sql += " ORDER BY " +
           Join(select.order_by, ", ", [&](const auto& key) { return SortKey(key, numbered); });
  }
  if (form.lists_keys) {  // rows that are equal in the order stand as the walk shows them
    const bool descending = !select.order_by.empty() && select.order_by.back().descending;
    sql += (select.order_by.empty() ? " ORDER BY " : ", ") + QuoteName(form.rowid_of) + ".rowid" +
           (descending ? " DESC" : "");
  }
  if (select.top) sql += " LIMIT " + LiteralValue(*select.top);
  return sql;
}

// The rows that share the last row's place in the order belong to the first n as well. The
// innermost query has the output columns and the sort keys, the next one each row's rank.
std::string SqlPrinter::TopWithTies(const jet::Select& select, const QueryForm& form) const {
  const std::vector<OutputColumn> outputs = OutputColumns(select, schema_);
  std::string items = NumberedItems(outputs);
  std::string keys;
  for (const jet::SortKey& key : select.order_by) {
    const size_t place = FindOutput(key.value, outputs);
    const bool shown = place < outputs.size();
    const size_t number = static_cast<size_t>(&key - select.order_by.data());
    const std::string name = shown ? Numbered('c', place) : Numbered('k', number);
    if (!shown) items += ", " + Ordered(key.value) + " AS " + name;
    keys += (keys.empty() ? "" : ", ") + name + (key.descending ? " DESC" : "");
  }
  size_t next = 0;
  const std::string shown = Join(outputs, ", ", [&](const OutputColumn& output) {
    const std::string column = Numbered('c', next++);
    return form.numbered ? column : column + " AS " + QuoteName(output.name);
  });
  return "SELECT " + shown + " FROM (SELECT *, rank() OVER (ORDER BY " + keys +
         ") AS \"rank\" FROM (SELECT " + (select.distinct ? "DISTINCT " : "") + items +
         Body(select) + ")) WHERE \"rank\" <= " + LiteralValue(*select.top) + " ORDER BY \"rank\"";
}

std::string SqlPrinter::Core(const jet::Select& select, const QueryForm& form) const {
  std::string sql = std::string("SELECT ") + (select.distinct ? "DISTINCT " : "");
  sql += Items(select, form);
  if (!form.rowid_of.empty()) sql += ", " + QuoteName(form.rowid_of) + ".rowid";
  return sql + Body(select, form);
}

// A star stays a star unless its columns need other names.
std::string SqlPrinter::Items(const jet::Select& select, const QueryForm& form) const {
  const std::vector<OutputColumn> outputs = OutputColumns(select, schema_);
  if (form.numbered) return NumberedItems(outputs);
  const bool expand = std::any_of(outputs.begin(), outputs.end(), [](const OutputColumn& output) {
    return !output.value && output.name != output.column;
  });
  const auto print = [this](const OutputColumn& output) { return Output(output, output.name); };
  if (expand) return Join(outputs, ", ", print);
  return Join(select.items, ", ", [&](const jet::SelectItem& item) -> std::string {
    if (item.all) return item.all_of.empty() ? "*" : QuoteName(item.all_of) + ".*";
    return print(*std::find_if(outputs.begin(), outputs.end(), [&](const OutputColumn& output) {
      return output.value == &item.value;
    }));
  });
}

std::string SqlPrinter::NumberedItems(std::span<const OutputColumn> outputs) const {
  size_t next = 0;
  return Join(outputs, ", ", [&](const OutputColumn& output) {
    const std::string name = Numbered('c', next++);
    return Output(output, std::string_view(name).substr(1, name.size() - 2));
  });
}

std::string SqlPrinter::Output(const OutputColumn& output, std::string_view name) const {
  const bool keeps_name = output.column == name;
  const std::string alias = keeps_name ? "" : " AS " + QuoteName(name);
  if (!output.value) {
    const std::string table = output.source.empty() ? "" : QuoteName(output.source) + ".";
    return table + QuoteName(output.column) + alias;
  }
  if (output.counts_rows) return "COUNT(*)" + alias;
  // A number needs no text order.
  const bool is_number = output.type && *output.type != dao::ColumnType::Text &&
                         *output.type != dao::ColumnType::LongText;
  return (is_number ? Print(*output.value) : Ordered(*output.value)) + alias;
}

void SqlPrinter::RequireOneColumn(const jet::Select& select) const {
  if (OutputColumns(select, schema_).size() != 1) {
    dao::Throw(dao::Error::SyntaxInExpression, "SELECT");
  }
}

std::string SqlPrinter::Body(const jet::Select& select, const QueryForm& form) const {
  std::string sql;
  // Walks the list and looks its rows up: the engine, which knows no sizes, would do it the other
  // way round when the list has an index.
  const char* const hint = PicksByList(select) ? " NOT INDEXED" : "";
  if (!select.from.sources.empty()) sql += " FROM " + Sources(select.from, hint);
  sql += form.texts ? SearchingWhere(form) : Where(select.where);
  if (!select.group_by.empty()) {
    sql += " GROUP BY " + Join(GroupKeys(select, schema_), ", ",
                               [this](const jet::Expr* key) { return Ordered(*key); });
  }
  if (select.having) sql += " HAVING " + Print(*select.having);
  return sql;
}

// Is the last source a list of keys that picks rows of the first one, with no other condition?
bool SqlPrinter::PicksByList(const jet::Select& select) const {
  const auto& sources = select.from.sources;
  if (sources.size() != 2 || sources[1].join != jet::Join::Inner || select.where) return false;
  const auto columns = [this](const jet::JoinedSource& joined) {
    const dao::TableSchema* table = schema_.FindTable(joined.source.table);
    return table ? table->columns.size() : 0;
  };
  return columns(sources[0]) > 1 && columns(sources[1]) == 1;
}

std::string SqlPrinter::Sources(const jet::From& from, std::string_view last_hint) const {
  std::string sql;
  for (const jet::JoinedSource& joined : from.sources) {
    if (!sql.empty()) sql += TextOf(joined.join);
    sql += Source(joined.source);
    if (&joined == &from.sources.back()) sql += last_hint;
    if (joined.on) sql += " ON " + Print(*joined.on);
  }
  return sql;
}

std::string SqlPrinter::Source(const jet::Source& source) const {
  if (source.group) return "(" + Sources(*source.group) + ")";
  const std::string alias = source.alias.empty() ? "" : " AS " + QuoteName(source.alias);
  if (source.select) return "(" + Query(*source.select, {.keep_order = false}) + ")" + alias;
  return QuoteName(RequireTable(schema_, source.table, dao::Error::UnknownTable).name) + alias;
}

std::string SqlPrinter::SortKey(const jet::SortKey& key,
                                std::span<const OutputColumn> numbered) const {
  const size_t place = FindOutput(key.value, numbered);
  const std::string sql = place < numbered.size() ? Numbered('c', place) : Ordered(key.value);
  return sql + (key.descending ? " DESC" : "");
}

std::string SqlPrinter::SearchingWhere(const QueryForm& form) const {
  const std::string parameter = "?" + std::to_string(options_.literals + 1);
  std::string sql = " WHERE ";
  if (form.lists_keys) {
    sql += QuoteName(form.rowid_of) + ".rowid IN (SELECT value FROM carray(?" +
           std::to_string(options_.literals + 2) + ")) AND ";
  }
  const std::string text = QuoteName(form.rowid_of) + "." + QuoteName(form.texts->column->name);
  if (form.begins_at_text) {
    sql += text + " >= ?" + std::to_string(options_.literals + 2) + " AND ";
  }
  for (const jet::Expr* other : form.texts->others) sql += "(" + Print(*other) + ") AND ";
  return sql + "vdsto_search(" + parameter + ", " + text + ")";
}

std::string SqlPrinter::Where(const jet::ExprPtr& condition) const {
  return condition ? " WHERE " + Print(*condition) : "";
}

}  // namespace vdstomgr::sqlite
