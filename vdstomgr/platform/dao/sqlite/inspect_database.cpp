#include "vdstomgr/platform/dao/inspect_database.h"

#include <sqlite3.h>

#include <string_view>

#include "vdstomgr/platform/dao/dao_database.h"
#include "vdstomgr/platform/dao/dao_recordset.h"
#include "vdstomgr/platform/dao/engine.h"
#include "vdstomgr/platform/dao/sqlite/connection.h"
#include "vdstomgr/platform/text/code_page.h"

namespace vdstomgr {

/// The engine answers "ok", or a line for each fault.
std::vector<std::string> CheckDatabase(CDaoDatabase& database) {
  auto& connection = static_cast<sqlite::Connection&>(database.Connection());
  const auto statement = connection.PrepareToKeep("PRAGMA integrity_check(1000)");
  std::vector<std::string> faults;
  int code = SQLITE_ROW;
  while ((code = sqlite3_step(statement.get())) == SQLITE_ROW) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), 0));
    if (text != nullptr && std::string_view(text) != "ok") faults.emplace_back(text);
  }
  if (code != SQLITE_DONE) faults.emplace_back(sqlite3_errmsg(connection.Handle()));
  return faults;
}

std::vector<std::string> ColumnNamesOf(CDaoRecordset& recordset) {
  const dao::ColumnTable& columns = recordset.Query().Columns();
  std::vector<std::string> names;
  for (int i = 0; i < columns.Count(); ++i) names.push_back(FromUtf8(columns.At(i).name));
  return names;
}

}  // namespace vdstomgr
