#pragma once

#include <memory>

#include "vdstomgr/platform/dao/ole_variant.h"
#include "vdstomgr/platform/export.h"

class CDaoDatabase;

namespace vdstomgr::dao {
class Query;
struct RowDraft;
}  // namespace vdstomgr::dao

/// The open type of a recordset that can be walked and written.
inline constexpr int dbOpenDynaset = 2;

/// The rows of a query, read by column name, with add, edit and delete. Failures are thrown as
/// CDaoException. Column names are compared without regard to ASCII case.
class VDSTO_API CDaoRecordset {
 public:
  enum class EditMode { None, Edit, Add };

  explicit CDaoRecordset(CDaoDatabase* database);
  virtual ~CDaoRecordset();
  CDaoRecordset(const CDaoRecordset&) = delete;
  CDaoRecordset& operator=(const CDaoRecordset&) = delete;

  /// Opens a query as a dynaset, whatever the type says; no row is read yet.
  virtual void Open(int type, const char* sql, int options = 0);
  /// Discards a pending add or edit and lets the query go. Closing twice is no failure.
  virtual void Close();
  bool IsOpen() const { return m_pQuery != nullptr; }

  bool IsEOF();
  void MoveNext();
  /// Runs the query again and goes to its first row.
  void MoveFirst();
  /// Goes `rows` rows forward, at most to the end. Throws 3219 for a negative number.
  void Move(int rows);

  COleVariant GetFieldValue(const char* column);
  COleVariant GetFieldValue(int position);
  void GetFieldValue(const char* column, COleVariant& value) { value = GetFieldValue(column); }
  int GetFieldCount();

  /// AddNew or Edit, then SetFieldValue per column, then Update. Moving discards what is pending.
  void AddNew();
  void Edit();
  void SetFieldValue(const char* column, const COleVariant& value);
  void SetFieldValue(const char* column, const char* text);
  void SetFieldValueNull(const char* column);
  void Update();
  void CancelUpdate();
  void Delete();
  EditMode GetEditMode() const { return m_editMode; }

  /// For the library's record maps, which include engine.h: the query itself, and the draft of the
  /// pending add or edit. Throw 3420 and 3020 when there is none.
  vdstomgr::dao::Query& Query();
  vdstomgr::dao::RowDraft& Draft();

 private:
  void StartEdit(EditMode mode);

  CDaoDatabase* m_pDatabase;
  std::unique_ptr<vdstomgr::dao::Query> m_pQuery;
  std::unique_ptr<vdstomgr::dao::RowDraft> m_pDraft;  // made by the first add or edit, then reused
  EditMode m_editMode = EditMode::None;
};
