#include <algorithm>
#include <array>
#include <charconv>

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/sqlite/sql_printer.h"
#include "vdstomgr/platform/dao/sqlite/sql_text.h"
#include "vdstomgr/platform/text/ascii.h"
#include "vdstomgr/platform/text/case_folding.h"

namespace vdstomgr::sqlite {
namespace {

using dao::ColumnSchema;
using dao::ColumnType;

// How a type is declared in the file. The engine looks for parts of these words to find out how to
// store a value: INT, TEXT, CHAR and DOUB. Only a Counter is INTEGER, because an INTEGER key would
// number itself.
struct DeclaredType {
  ColumnType type;
  std::string_view text;
};

constexpr std::array kDeclaredTypes = {
    DeclaredType{ColumnType::Byte, "BYTE INT"},      DeclaredType{ColumnType::Integer, "INT"},
    DeclaredType{ColumnType::Counter, "INTEGER"},    DeclaredType{ColumnType::Double, "DOUBLE"},
    DeclaredType{ColumnType::LongText, "MEMO TEXT"},
};
constexpr std::string_view kFixedText = "CHAR(";
constexpr std::string_view kVaryingText = "VARCHAR(";

constexpr std::string_view kByteRange = " BETWEEN 0 AND 255";
constexpr std::string_view kIntegerRange = " BETWEEN -2147483648 AND 2147483647";

std::string PrintType(const jet::ColumnDefinition& column) {
  const ColumnSchema& schema = column.schema;
  if (schema.type == ColumnType::Text) {
    return std::string(column.fixed_width ? kFixedText : kVaryingText) +
           std::to_string(schema.size) + ")";
  }
  return std::string(
      std::find_if(kDeclaredTypes.begin(), kDeclaredTypes.end(), [&](const auto& known) {
        return known.type == schema.type;
      })->text);
}

std::optional<int> ReadSize(std::string_view type) {
  const std::string_view opening = type.starts_with(kFixedText) ? kFixedText : kVaryingText;
  if (!type.starts_with(opening) || !type.ends_with(')')) return std::nullopt;
  type.remove_prefix(opening.size());
  type.remove_suffix(1);
  int size = 0;
  const auto read = std::from_chars(type.data(), type.data() + type.size(), size);
  const bool is_size = read.ec == std::errc() && read.ptr == type.data() + type.size() && size > 0;
  return is_size ? std::optional(size) : std::nullopt;
}

// A constraint whose name tells the column and the rule when a row breaks it.
std::string Constraint(std::string_view rule, const ColumnSchema& column, std::string_view body) {
  return " CONSTRAINT " + QuoteName(std::string(rule) + "." + column.name) + " " +
         std::string(body);
}

std::string Check(std::string_view rule, const ColumnSchema& column, std::string_view condition) {
  return Constraint(rule, column, "CHECK (" + std::string(condition) + ")");
}

std::string TypeCheck(const ColumnSchema& column, std::string_view type) {
  const std::string name = QuoteName(column.name);
  return Check("type", column, "CAST(" + name + " AS " + std::string(type) + ") = " + name);
}

std::string RangeCheck(const ColumnSchema& column, std::string_view range) {
  return Check("range", column, QuoteName(column.name) + std::string(range));
}

std::string Checks(const ColumnSchema& column) {
  switch (column.type) {
    case ColumnType::Byte:
      return TypeCheck(column, "INTEGER") + RangeCheck(column, kByteRange);
    case ColumnType::Integer:
      return TypeCheck(column, "INTEGER") + RangeCheck(column, kIntegerRange);
    case ColumnType::Counter:
      return RangeCheck(column, kIntegerRange);
    case ColumnType::Double:
      return TypeCheck(column, "REAL");
    case ColumnType::Text:
      return Check("size", column,
                   "length(" + QuoteName(column.name) + ") <= " + std::to_string(column.size));
    case ColumnType::LongText:
      return {};
  }
  return {};
}

std::string NullCheck(const ColumnSchema& column) {
  if (column.key) return Constraint("key", column, "NOT NULL");
  return column.required ? Constraint("required", column, "NOT NULL") : "";
}

std::string PrintColumn(const jet::ColumnDefinition& column) {
  const ColumnSchema& schema = column.schema;
  if (IsRowidName(schema.name)) dao::Throw(dao::Error::SyntaxInFieldDefinition, schema.name);
  const std::string head = QuoteName(schema.name) + " " + PrintType(column);
  if (schema.type == ColumnType::Counter) {
    return head + " PRIMARY KEY AUTOINCREMENT" + Checks(schema);
  }
  const bool is_text = schema.type == ColumnType::Text || schema.type == ColumnType::LongText;
  const std::string order = is_text ? std::string(" COLLATE ") + kTextOrderName : "";
  return head + order + NullCheck(schema) + Checks(schema);
}

std::string PrintKey(std::string_view kind, const std::vector<std::string>& columns) {
  return ", " + std::string(kind) + " (" + Join(columns, ", ", QuoteName) + ")";
}

// Index names are per table in the dialect and per file in the engine.
std::string IndexName(const dao::TableSchema& table, std::string_view index) {
  return QuoteName(table.name + "." + std::string(index));
}

}  // namespace

std::optional<ColumnSchema> ReadDeclaredType(std::string_view name,
                                             std::string_view declared_type) {
  ColumnSchema column;
  column.name = name;
  if (const auto size = ReadSize(declared_type)) {
    column.type = ColumnType::Text;
    column.size = *size;
    return column;
  }
  const auto* known = std::find_if(kDeclaredTypes.begin(), kDeclaredTypes.end(),
                                   [&](const auto& t) { return SameName(t.text, declared_type); });
  if (known == kDeclaredTypes.end()) return std::nullopt;
  column.type = known->type;
  return column;
}

std::string SqlPrinter::Schema(const jet::CreateTable& create) const {
  const auto is_counter = [](const auto& c) { return c.schema.type == ColumnType::Counter; };
  std::string sql =
      "CREATE TABLE " + QuoteName(create.table) + " (" + Join(create.columns, ", ", PrintColumn);
  const bool numbered = std::any_of(create.columns.begin(), create.columns.end(), is_counter);
  if (!create.primary_key.empty() && !numbered) sql += PrintKey("PRIMARY KEY", create.primary_key);
  for (const auto& columns : create.unique_keys) sql += PrintKey("UNIQUE", columns);
  return sql + ")";
}

std::string SqlPrinter::Schema(const jet::CreateIndex& create) const {
  const dao::TableSchema& table = RequireTable(schema_, create.table, dao::Error::UnknownTable);
  return std::string("CREATE ") + (create.unique ? "UNIQUE " : "") + "INDEX " +
         IndexName(table, create.name) + " ON " + QuoteName(table.name) + " (" +
         Join(create.columns, ", ",
              [](const jet::CreateIndex::Column& column) {
                return QuoteName(column.name) + (column.descending ? " DESC" : "");
              }) +
         ")";
}

std::string SqlPrinter::Schema(const jet::DropTable& drop) const {
  return "DROP TABLE " +
         QuoteName(RequireTable(schema_, drop.table, dao::Error::TableMissing).name);
}

std::string SqlPrinter::Schema(const jet::DropIndex& drop) const {
  const auto& table = RequireTable(schema_, drop.table, dao::Error::TableMissing);
  return "DROP INDEX " + IndexName(table, drop.name);
}

}  // namespace vdstomgr::sqlite
