#pragma once

#include <cstdint>
#include <iterator>

#include "vdstomgr/platform/dao/engine.h"
#include "vdstomgr/platform/dao/rk_dao.h"
#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/framework/types.h"

namespace vdstomgr {

/// The current row of a query, read by column name; without a name its first column is read. A null
/// column reads as 0 or as an empty text. Reading a column that the query does not have throws
/// CDaoException.
class Row {
 public:
  explicit Row(CRkDaoRecordset& recordset) : recordset_(recordset) {}

  std::int32_t Integer(const char* column = nullptr);
  /// A number that is an identifier: -1 reads as 0xFFFFFFFF.
  DWORD Id(const char* column = nullptr) { return static_cast<DWORD>(Integer(column)); }
  BYTE Byte(const char* column) { return static_cast<BYTE>(Integer(column)); }
  /// In the process's code page.
  CString Text(const char* column = nullptr);
  bool IsNull(const char* column);

  /// For whole records and for writing the row.
  CRkDaoRecordset& Recordset() { return recordset_; }

 private:
  CRkDaoRecordset& recordset_;
};

/// The rows of one query, read as they are walked; closed with the scope.
///   for (Row& row : session.Select("SELECT szGUID FROM PhotoTag WHERE dwTagID = %d", id)) ...
///   Rows rows = session.Select(...); if (rows.HasRow()) ... rows->Integer("nCount")
class Rows {
 public:
  /// Opens the query. Throws CDaoException.
  Rows(CRkDaoDatabase& database, const char* sql);

  /// Is there a current row? Before the first move this is the query's first row.
  bool HasRow() { return !recordset_.IsEOF(); }
  Row* operator->() { return &row_; }
  Row& operator*() { return row_; }

  /// Leaves `count` rows, from the `first` on, before the first is asked for; those before are not
  /// read. See dao::Query.
  void Window(int first, int count) { recordset_.Query().Window(first, count); }

  class Iterator {
   public:
    explicit Iterator(Rows& rows) : rows_(rows) {}
    Row& operator*() const { return rows_.row_; }
    Iterator& operator++() {
      rows_.recordset_.MoveNext();
      return *this;
    }
    bool operator==(std::default_sentinel_t) const { return !rows_.HasRow(); }

   private:
    Rows& rows_;
  };
  Iterator begin() { return Iterator(*this); }
  std::default_sentinel_t end() const { return {}; }

 private:
  CRkDaoRecordset recordset_;
  Row row_{recordset_};
};

/// The first column of the first row; `missing` without a row.
std::int32_t FirstInteger(Rows rows, std::int32_t missing = 0);
/// 0xFFFFFFFF without a row.
DWORD FirstId(Rows rows);
/// Empty without a row.
CString FirstText(Rows rows);

/// Append one column of all rows, the first one unless it is named.
void AppendRows(Rows rows, CDWordArray& ids, const char* column = nullptr);
void AppendRows(Rows rows, CStringArray& texts, const char* column = nullptr);

}  // namespace vdstomgr
