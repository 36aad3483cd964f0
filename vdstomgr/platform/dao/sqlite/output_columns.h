#pragma once

#include <optional>
#include <string>
#include <vector>

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/jet/ast.h"
#include "vdstomgr/platform/dao/schema.h"

/// What a query shows, found out from the schema: the columns behind a star, names and types.
namespace vdstomgr::sqlite {

struct OutputColumn {
  std::string name;    ///< Expr1000, Expr1001 ... for an expression without an alias
  std::string column;  ///< a plain column's own name, empty for anything that was given another
  std::string source;  ///< the table or alias that a plain column belongs to
  std::optional<dao::ColumnType> type;        ///< when it is known
  const jet::Expr* value = nullptr;           ///< null for a column that stands behind a star
  bool counts_rows = false;                   ///< counts a column that no row lacks
  const dao::ColumnSchema* stored = nullptr;  ///< of a source that is a table: its column
  bool never_null = false;                    ///< of a source: no row lacks it
};

/// A table or derived table as the expressions of a query see it.
struct VisibleSource {
  std::string name;               ///< the alias, or the table's name
  const dao::TableSchema* table;  ///< null for a derived table
  std::vector<OutputColumn> columns;
};

/// The column that an expression names; null when it is no column, or none of these.
const OutputColumn* FindColumn(const jet::Expr& expr, const std::vector<VisibleSource>& sources);

/// The sources of a query in order, those in parentheses included. Throws UnknownTable.
std::vector<VisibleSource> VisibleSources(const jet::From& from, const dao::SchemaView& schema);

/// The output columns of a query. Columns of one name that come from different sources are named
/// "source.name". Throws UnknownTable.
std::vector<OutputColumn> OutputColumns(const jet::Select& select, const dao::SchemaView& schema);

/// The type of an expression over these sources, as far as it can be told without running it.
std::optional<dao::ColumnType> TypeOf(const jet::Expr& expr,
                                      const std::vector<VisibleSource>& sources);

/// Is it a type whose values are whole numbers?
bool IsIntegerType(std::optional<dao::ColumnType> type);

/// The table of that name. Throws `missing` when there is none.
const dao::TableSchema& RequireTable(const dao::SchemaView& schema, const std::string& name,
                                     dao::Error missing);

}  // namespace vdstomgr::sqlite
