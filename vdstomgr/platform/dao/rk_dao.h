#pragma once

#include <concepts>
#include <cstdint>

#include "vdstomgr/platform/dao/dao_database.h"
#include "vdstomgr/platform/dao/dao_recordset.h"

/// The catalogue's database: a statement that fails says nothing.
class VDSTO_API CRkDaoDatabase : public CDaoDatabase {
 public:
  /// Runs a statement and swallows its failure, duplicate keys and syntax errors alike; a row that
  /// cannot be written is left out. Trouble with the file itself (locked by somebody else, disk
  /// full, read-only, damaged) is no failure of the statement and is thrown as CDaoException, so
  /// that nothing is lost in silence.
  void Execute(const char* sql, int options = 0) override;

  /// Runs a statement whose failure matters: throws, and nothing of the statement remains.
  void ExecuteOrThrow(const char* sql) { CDaoDatabase::Execute(sql, dbFailOnError); }
};

/// The catalogue's recordset: typed setters that fix the variant a value travels in.
class VDSTO_API CRkDaoRecordset : public CDaoRecordset {
 public:
  using CDaoRecordset::CDaoRecordset;
  using CDaoRecordset::SetFieldValue;

  /// DWORD and std::uint32_t, which are two types on Windows.
  template <std::unsigned_integral Number>
  requires(sizeof(Number) == sizeof(std::int32_t)) void SetFieldValue(const char* column,
                                                                      Number value) {
    CDaoRecordset::SetFieldValue(column, COleVariant(static_cast<std::int32_t>(value)));
  }
  void SetFieldValue(const char* column, std::uint16_t value) {
    CDaoRecordset::SetFieldValue(column, COleVariant(static_cast<std::int32_t>(value)));
  }
  void SetFieldValue(const char* column, BYTE value) {
    CDaoRecordset::SetFieldValue(column, COleVariant(value));
  }
  void SetFieldValue(const char* column, double value) {
    CDaoRecordset::SetFieldValue(column, COleVariant(value));
  }
};
