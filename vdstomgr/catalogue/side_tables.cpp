#include "vdstomgr/catalogue/side_tables.h"

#include "vdstomgr/session/database_session.h"

namespace vdstomgr::catalogue {

namespace {

int AppendNames(DatabaseSession& db, CStringArray& names, SqlFormat<> query) {
  return db.Guarded(0, [&] {
    const int before = names.GetSize();
    AppendRows(db.Select(query), names);
    return names.GetSize() - before;
  });
}

}  // namespace

bool SideTables::IsRP(const char* guid) {
  return !GetRP(guid).IsEmpty();
}

bool SideTables::IsOP(const char* guid) {
  return !GetOP(guid).IsEmpty();
}

bool SideTables::AddRP(const char* guid, const char* path) {
  return m_db->ExecuteOrFail("INSERT INTO PhotoRP (szGUID, szPathName) values ('%s', '%s')",
                             Raw(guid), path);
}

bool SideTables::AddOP(const char* guid, const char* path) {
  return m_db->Guarded(false, [&] {
    Rows rows = m_db->Select("SELECT * FROM PhotoOP");
    CRkDaoRecordset& row = rows->Recordset();
    row.AddNew();
    row.SetFieldValue("szGUID", guid);
    row.SetFieldValue("szPathName", path);
    row.Update();
    return true;
  });
}

bool SideTables::SetRP(const char* guid, const char* path) {
  return m_db->ExecuteOrFail("UPDATE PhotoRP SET szPathName = '%s' WHERE szGUID = '%s'", path,
                             Raw(guid));
}

bool SideTables::SetOP(const char* guid, const char* path) {
  return m_db->ExecuteOrFail("UPDATE PhotoOP SET szPathName = '%s' WHERE szGUID = '%s'", path,
                             Raw(guid));
}

CString SideTables::GetRP(const char* guid) {
  return m_db->AskText("SELECT szPathName FROM PhotoRP WHERE szGUID = '%s'", Raw(guid));
}

CString SideTables::GetOP(const char* guid) {
  return m_db->AskText("SELECT szPathName FROM PhotoOP WHERE szGUID = '%s'", Raw(guid));
}

bool SideTables::DelRP(const char* guid) {
  return m_db->ExecuteOrFail("DELETE FROM PhotoRP WHERE szGUID = '%s'", Raw(guid));
}

bool SideTables::DelOP(const char* guid) {
  return m_db->ExecuteOrFail("DELETE FROM PhotoOP WHERE szGUID = '%s'", Raw(guid));
}

bool SideTables::AddModel(const char* name) {
  return m_db->ExecuteOrFail("INSERT INTO CameraModel (szName) values ('%s')", name);
}

bool SideTables::AddMyModel(const char* name) {
  return m_db->ExecuteOrFail("INSERT INTO MyCameraModel (szName) values ('%s')", name);
}

bool SideTables::AddLens(const char* name) {
  return m_db->ExecuteOrFail("INSERT INTO CameraLens (szName) values ('%s')", name);
}

bool SideTables::AddMyLens(const char* name) {
  return m_db->ExecuteOrFail("INSERT INTO MyCameraLens (szName) values ('%s')", name);
}

int SideTables::GetModel(CStringArray& names) {
  return AppendNames(*m_db, names, "SELECT szName FROM CameraModel ORDER BY szName ASC");
}

int SideTables::GetMyModel(CStringArray& names) {
  return AppendNames(*m_db, names, "SELECT szName FROM MyCameraModel ORDER BY szName ASC");
}

int SideTables::GetLens(CStringArray& names) {
  return AppendNames(*m_db, names, "SELECT szName FROM CameraLens ORDER BY szName ASC");
}

int SideTables::GetMyLens(CStringArray& names) {
  return AppendNames(*m_db, names, "SELECT szName FROM MyCameraLens ORDER BY szName ASC");
}

}  // namespace vdstomgr::catalogue
