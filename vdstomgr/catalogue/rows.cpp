#include "vdstomgr/catalogue/rows.h"

#include "vdstomgr/catalogue/column_text.h"
#include "vdstomgr/platform/text/code_page.h"

namespace vdstomgr {

dao::Field Row::Field(const char* column) {
  dao::Query& query = recordset_.Query();
  return query.Get(query.Columns().Find(column));
}

std::int32_t Row::Integer(const char* column) {
  return static_cast<std::int32_t>(AsInteger(Field(column)));
}

CString Row::Text(const char* column) {
  return FromUtf8(Field(column).bytes);
}

bool Row::IsNull(const char* column) {
  return Field(column).IsNull();
}

Rows::Rows(CRkDaoDatabase& database, const char* sql) : recordset_(&database) {
  recordset_.Open(dbOpenDynaset, sql);
}

std::int32_t FirstInteger(Rows rows, const char* column) {
  return rows.HasRow() ? rows->Integer(column) : 0;
}

DWORD FirstId(Rows rows, const char* column) {
  return rows.HasRow() ? rows->Id(column) : static_cast<DWORD>(-1);
}

CString FirstText(Rows rows, const char* column) {
  return rows.HasRow() ? rows->Text(column) : CString();
}

int AppendIds(Rows rows, const char* column, CDWordArray& ids) {
  for (Row& row : rows) ids.Add(row.Id(column));
  return ids.GetSize();
}

int AppendTexts(Rows rows, const char* column, CStringArray& texts) {
  for (Row& row : rows) texts.Add(row.Text(column));
  return texts.GetSize();
}

}  // namespace vdstomgr
