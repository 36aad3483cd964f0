#pragma once

#include <cstdint>
#include <iterator>

#include "vdstomgr/platform/dao/rk_dao.h"
#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/framework/types.h"

namespace vdstomgr {

/// The current row of a query, read by column name. A null column reads as 0 or as an empty text.
/// Reading a column that the query does not have throws CDaoException.
class VDSTO_API Row {
 public:
  explicit Row(CRkDaoRecordset& recordset) : recordset_(recordset) {}

  std::int32_t Integer(const char* column);
  /// A number that is an identifier: -1 reads as 0xFFFFFFFF.
  DWORD Id(const char* column) { return static_cast<DWORD>(Integer(column)); }
  BYTE Byte(const char* column) { return static_cast<BYTE>(Integer(column)); }
  /// In the process's code page.
  CString Text(const char* column);
  bool IsNull(const char* column);

  /// For whole records and for writing the row.
  CRkDaoRecordset& Recordset() { return recordset_; }

 private:
  dao::Field Field(const char* column);

  CRkDaoRecordset& recordset_;
};

/// The rows of one query, read as they are walked; closed with the scope.
///   for (Row& row : Select("SELECT szGUID FROM PhotoTag WHERE dwTagID = %d", id)) ...
///   Rows rows = Select(...); if (rows.HasRow()) ... rows->Integer("nCount")
class VDSTO_API Rows {
 public:
  /// Opens the query. Throws CDaoException.
  Rows(CRkDaoDatabase& database, const char* sql);

  /// Is there a current row? Before the first move this is the query's first row.
  bool HasRow() { return !recordset_.IsEOF(); }
  Row* operator->() { return &row_; }
  Row& operator*() { return row_; }

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

/// One column of the first row; without a row 0, 0xFFFFFFFF and an empty text.
VDSTO_API std::int32_t FirstInteger(Rows rows, const char* column);
VDSTO_API DWORD FirstId(Rows rows, const char* column);
VDSTO_API CString FirstText(Rows rows, const char* column);

/// One column of all rows. Answer the list's size.
VDSTO_API int AppendIds(Rows rows, const char* column, CDWordArray& ids);
VDSTO_API int AppendTexts(Rows rows, const char* column, CStringArray& texts);

}  // namespace vdstomgr
