#include "vdstomgr/session/rows.h"

#include "vdstomgr/platform/dao/engine.h"
#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/session/column_text.h"

namespace vdstomgr {

namespace {

dao::Field FieldOf(CRkDaoRecordset& recordset, const char* column) {
  dao::Query& query = recordset.Query();
  return query.Get(column == nullptr ? 0 : query.Columns().Find(column));
}

}  // namespace

std::int32_t Row::Integer(const char* column) {
  return static_cast<std::int32_t>(AsInteger(FieldOf(recordset_, column)));
}

CString Row::Text(const char* column) {
  return FromUtf8(FieldOf(recordset_, column).bytes);
}

bool Row::IsNull(const char* column) {
  return FieldOf(recordset_, column).IsNull();
}

Rows::Rows(CRkDaoDatabase& database, const char* sql) : recordset_(&database) {
  recordset_.Open(dbOpenDynaset, sql);
}

std::int32_t FirstInteger(Rows rows, std::int32_t missing) {
  return rows.HasRow() ? rows->Integer() : missing;
}

DWORD FirstId(Rows rows) {
  return rows.HasRow() ? rows->Id() : static_cast<DWORD>(-1);
}

CString FirstText(Rows rows) {
  return rows.HasRow() ? rows->Text() : CString();
}

void AppendRows(Rows rows, CDWordArray& ids, const char* column) {
  for (Row& row : rows) ids.Add(row.Id(column));
}

void AppendRows(Rows rows, CStringArray& texts, const char* column) {
  for (Row& row : rows) texts.Add(row.Text(column));
}

}  // namespace vdstomgr
