#include "vdstomgr/platform/dao/sqlite/schema_cache.h"

#include <sqlite3.h>

#include "vdstomgr/platform/dao/sqlite/errors.h"
#include "vdstomgr/platform/dao/sqlite/printer.h"
#include "vdstomgr/platform/dao/sqlite/statement_cache.h"
#include "vdstomgr/platform/text/ascii.h"

namespace vdstomgr::sqlite {
namespace {

std::string ColumnText(sqlite3_stmt* statement, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
  return text ? text : "";
}

dao::ColumnSchema ReadColumn(sqlite3_stmt* row) {
  dao::ColumnSchema column =
      ReadDeclaredType(ColumnText(row, 0), ColumnText(row, 1))
          .value_or(dao::ColumnSchema{ColumnText(row, 0), dao::ColumnType::LongText});
  column.required = sqlite3_column_int(row, 2) != 0;
  column.key = sqlite3_column_int(row, 3) != 0;
  column.text_index = sqlite3_column_int(row, 5) != 0;
  return column;
}

}  // namespace

const dao::TableSchema* SchemaCache::FindTable(std::string_view name) const {
  const std::string key = AsciiLowered(name);
  if (const auto known = tables_.find(key); known != tables_.end()) return &known->second;

  sqlite3_stmt* raw = nullptr;
  constexpr const char* kSql =
      "SELECT c.name, c.type, c.\"notnull\", c.pk, t.name, EXISTS (SELECT 1 FROM "
      "sqlite_schema i WHERE i.type = 'trigger' AND i.tbl_name = t.name AND "
      "i.name = 'vdsto.' || t.name || '.' || c.name || '.update') "
      "FROM sqlite_schema t, pragma_table_info(t.name) c WHERE t.type = 'table' AND "
      "t.name = ?1 COLLATE NOCASE AND substr(t.name, 1, 6) <> 'vdsto.' ORDER BY c.cid";
  Check(db_, sqlite3_prepare_v2(db_, kSql, -1, &raw, nullptr), kSql);
  const StatementHandle statement(raw);
  Check(db_,
        sqlite3_bind_text(raw, 1, name.data(), static_cast<int>(name.size()), SQLITE_TRANSIENT),
        kSql);

  dao::TableSchema table;
  int step = sqlite3_step(raw);
  for (; step == SQLITE_ROW; step = sqlite3_step(raw)) {
    table.columns.push_back(ReadColumn(raw));
    table.name = ColumnText(raw, 4);
  }
  if (step != SQLITE_DONE) ThrowEngineError(db_, step, kSql);
  if (table.columns.empty()) return nullptr;
  return &tables_.emplace(key, std::move(table)).first->second;
}

}  // namespace vdstomgr::sqlite
