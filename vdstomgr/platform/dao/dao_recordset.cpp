#include "vdstomgr/platform/dao/dao_recordset.h"

#include <limits>
#include <string>

#include "vdstomgr/platform/dao/dao_database.h"
#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/engine.h"
#include "vdstomgr/platform/text/code_page.h"

using namespace vdstomgr;
using dao::ColumnSchema;
using dao::ColumnType;
using dao::Error;
using dao::Field;
using dao::Kind;
using dao::Throw;
using dao::Value;

namespace {

COleVariant IntegerVariant(std::int64_t value, ColumnType type) {
  if (type == ColumnType::Byte && value >= 0 && value <= 255) {
    return COleVariant(static_cast<BYTE>(value));
  }
  const auto narrow = static_cast<std::int32_t>(value);
  return narrow == value ? COleVariant(narrow) : COleVariant(static_cast<double>(value));
}

COleVariant MakeVariant(const Field& field, const ColumnSchema& column) {
  COleVariant variant;
  switch (field.kind) {
    case Kind::Integer:
      return IntegerVariant(field.integer, column.type);
    case Kind::Real:
      return COleVariant(field.real);
    case Kind::Text:
      return COleVariant(FromUtf8(field.bytes).c_str());
    case Kind::Binary:
      return COleVariant(std::vector<BYTE>(field.bytes.begin(), field.bytes.end()));
    case Kind::Null:
      variant.SetNull();
  }
  return variant;
}

void SetText(Value& value, std::string_view process_text) {
  value.kind = Kind::Text;
  value.bytes.clear();
  AppendUtf8(process_text, value.bytes);
}

// The value as the column's type stores it; whether it fits is for the table's constraints to say.
void Convert(const COleVariant& variant, const ColumnSchema& column, Value& value) {
  if (variant.vt == VT_NULL || variant.vt == VT_EMPTY) return value.SetNull();
  if (variant.vt == VT_BYTES) {
    value.kind = Kind::Binary;
    value.bytes.assign(variant.bytes.begin(), variant.bytes.end());
    return;
  }
  COleVariant converted = variant;
  switch (column.type) {
    case ColumnType::Byte:
    case ColumnType::Integer:
    case ColumnType::Counter:
      converted.ChangeType(VT_I4);
      return value.SetInteger(converted.lVal);
    case ColumnType::Double:
      converted.ChangeType(VT_R8);
      return value.SetReal(converted.dblVal);
    case ColumnType::Text:
    case ColumnType::LongText:
      return SetText(value, variant.ToText().GetString());
  }
}

// Columns that hold their new value already are left alone, and so are the indexes on them: a
// record is usually written whole with a few columns changed.
void KeepChanges(dao::Query& query, dao::RowDraft& draft) {
  for (int i = 0; i < query.Columns().Count(); ++i) {
    const auto at = static_cast<size_t>(i);
    if (draft.is_set[at] && draft.values[at] == query.Get(i)) draft.is_set[at] = false;
  }
}

}  // namespace

CDaoRecordset::CDaoRecordset(CDaoDatabase* database) : m_pDatabase(database) {}
CDaoRecordset::~CDaoRecordset() = default;

void CDaoRecordset::Open(int, const char* sql, int) {
  if (IsOpen()) Throw(Error::InvalidOperation);
  m_pQuery = m_pDatabase->Connection().Open(ToUtf8(ViewOf(sql)));
}

void CDaoRecordset::Close() {
  m_editMode = EditMode::None;
  m_pQuery.reset();
}

bool CDaoRecordset::IsEOF() {
  return Query().AtEnd();
}

void CDaoRecordset::MoveNext() {
  m_editMode = EditMode::None;
  Query().MoveNext();
}

void CDaoRecordset::MoveFirst() {
  m_editMode = EditMode::None;
  Query().Restart();
}

void CDaoRecordset::Move(int rows) {
  if (rows < 0) Throw(Error::InvalidOperation);
  m_editMode = EditMode::None;
  for (; rows > 0 && !IsEOF(); --rows) Query().MoveNext();
}

COleVariant CDaoRecordset::GetFieldValue(const char* column) {
  return GetFieldValue(Query().Columns().Find(ToUtf8(ViewOf(column))));
}

COleVariant CDaoRecordset::GetFieldValue(int position) {
  const dao::ColumnTable& columns = Query().Columns();
  if (position < 0 || position >= columns.Count()) {
    Throw(Error::ItemNotFound, std::to_string(position));
  }
  return MakeVariant(Query().Get(position), columns.At(position));
}

int CDaoRecordset::GetFieldCount() {
  return Query().Columns().Count();
}

void CDaoRecordset::AddNew() {
  StartEdit(EditMode::Add);
}

void CDaoRecordset::Edit() {
  if (IsEOF()) Throw(Error::NoCurrentRecord);
  StartEdit(EditMode::Edit);
}

void CDaoRecordset::StartEdit(EditMode mode) {
  if (!Query().IsUpdatable()) Throw(Error::ReadOnly);
  if (!m_pDraft) m_pDraft = std::make_unique<dao::RowDraft>();
  m_pDraft->Start(Query().Columns().Count());
  m_editMode = mode;
}

void CDaoRecordset::SetFieldValue(const char* column, const COleVariant& value) {
  const int position = Query().Columns().Find(ToUtf8(ViewOf(column)));
  Convert(value, Query().Columns().At(position), Draft().Set(position));
}

void CDaoRecordset::SetFieldValue(const char* column, const char* text) {
  SetFieldValue(column, COleVariant(text));
}

void CDaoRecordset::SetFieldValueNull(const char* column) {
  Draft().Set(Query().Columns().Find(ToUtf8(ViewOf(column)))).SetNull();
}

void CDaoRecordset::Update() {
  dao::RowDraft& draft = Draft();
  if (m_editMode == EditMode::Add) {
    Query().Insert(draft);
  } else {
    KeepChanges(Query(), draft);
    Query().Update(draft);
  }
  m_editMode = EditMode::None;
}

void CDaoRecordset::CancelUpdate() {
  Draft();
  m_editMode = EditMode::None;
}

void CDaoRecordset::Delete() {
  m_editMode = EditMode::None;
  Query().Delete();
}

dao::Query& CDaoRecordset::Query() {
  if (!m_pQuery) Throw(Error::ObjectClosed);
  return *m_pQuery;
}

dao::RowDraft& CDaoRecordset::Draft() {
  if (m_editMode == EditMode::None) Throw(Error::NoEditMode);
  return *m_pDraft;
}
