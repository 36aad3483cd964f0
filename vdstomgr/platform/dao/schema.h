#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vdstomgr::dao {

/// The dialect's column types. INTEGER is signed 32-bit, BYTE 0..255.
enum class ColumnType { Byte, Integer, Counter, Double, Text, LongText };

struct ColumnSchema {
  std::string name;
  ColumnType type = ColumnType::Integer;
  int size = 0;             ///< most characters of a Text column (CHAR(n), VARCHAR(n)); else 0
  bool required = false;    ///< NOT NULL was declared
  bool key = false;         ///< part of the primary key, so never null
  bool text_index = false;  ///< its texts have an index for LIKE
};

struct TableSchema {
  std::string name;
  std::vector<ColumnSchema> columns;

  /// The column of that name, letters compared without regard to ASCII case; null when missing.
  const ColumnSchema* Find(std::string_view column) const;
};

/// The tables of an open database.
class SchemaView {
 public:
  virtual ~SchemaView() = default;
  /// The table of that name, or null. The pointer stays good until the schema changes.
  virtual const TableSchema* FindTable(std::string_view name) const = 0;
};

}  // namespace vdstomgr::dao
