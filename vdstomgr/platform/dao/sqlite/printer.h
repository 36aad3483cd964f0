#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vdstomgr/platform/dao/jet/ast.h"
#include "vdstomgr/platform/dao/schema.h"

/// Prints statements of the dialect as the engine wants them.
///
/// The printed SQL uses these functions, which the connection provides:
///   jet_mod(a, b), jet_div(a, b), jet_intdiv(a, b), jet_pow(a, b)   MOD / \ ^
///   jet_integer(x)   numbers and numeric text rounded half to even, anything else as it is
///   jet_real(x)      numeric text as a number, anything else as it is
///   jet_single(x)    aggregate: the value of the only row, null without a row, an error with more
///   like(pattern, text)   the dialect's LIKE
///   vdsto_search(search, text)   the LIKE tests of a TextQuery
/// and the collation kTextOrderName.
namespace vdstomgr::sqlite {

struct PrintOptions {
  /// Rows that break a key or do not fit are left out (INSERT OR IGNORE, UPDATE OR IGNORE).
  bool skip_failing_rows = false;
  /// Empty: the n-th literal of the shape is printed as ?n. Otherwise the literals themselves are
  /// printed, for statements with more literals than the engine has parameters.
  std::span<const jet::Literal> inline_literals = {};
  /// How many literals the shape has.
  int literals = 0;
  /// May LIKE tests on a column with a text index be printed as a search of texts?
  bool searches_texts = false;
  /// Columns that the engine did not know ("name" or "table.name"), to be printed as NULL: so one
  /// can prepare again and find the next unknown one.
  std::span<const std::string> unknown_columns = {};
};

enum class StatementKind { Select, Insert, Update, Delete, Schema };

/// LIKE tests on one column, under AND and OR.
struct TextTest {
  enum class Kind { Like, All, Any };
  Kind kind = Kind::Like;
  int literal = 0;  ///< Like: the pattern's place in the shape's list
  std::vector<TextTest> parts;
};

/// A query that asks TextSearch instead of LIKE, which it is given in a parameter: in one form for
/// the walk through all rows, and in one for the rows that the index names.
struct TextQuery {
  TextTest test;
  int parameter = 0;     ///< where both take the search; the second takes a list of keys behind it
  std::string walk_sql;  ///< Printed::sql
  std::string listed_sql;      ///< the same rows as far as they are in the list
  std::string candidates_sql;  ///< the keys of the rows that can match; its parameter is the match
  std::string matches_sql;     ///< the same without rows that have changed lately, in order
  std::string last_row_sql;    ///< the highest key of the table
  std::string changed_sql;     ///< the keys of the rows that have changed lately
  // Of a query whose rows stand in the order of the texts; otherwise empty.
  std::string walk_on_sql;  ///< the walk from a text on, which is one more parameter
  std::string next_sql;     ///< the first text that is not before a text, its parameter
};

struct Printed {
  std::string sql;
  StatementKind kind = StatementKind::Select;
  /// Select: the base table whose rows, one for one, the query shows in columns of their own names.
  /// Then the printed SELECT has one more output column, the last: the rowid. Otherwise empty.
  std::string editable_table;
  std::optional<TextQuery> text_query;
};

/// Prints a statement. Throws UnknownTable, UnknownOutputTable, TableMissing, UnknownInsertField,
/// DuplicateDestination, ValueCountMismatch; unknown columns of expressions are left to the engine.
Printed Print(const jet::Statement& statement, const dao::SchemaView& schema,
              const PrintOptions& options);

/// Reads a declared type as Print writes it for CREATE TABLE ("BYTE INT", "CHAR(36)") back into the
/// column's type and size; nothing for types that this library does not write.
std::optional<dao::ColumnSchema> ReadDeclaredType(std::string_view name,
                                                  std::string_view declared_type);

}  // namespace vdstomgr::sqlite
