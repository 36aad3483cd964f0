#include "vdstomgr/catalogue/photo_attributes.h"

#include <chrono>
#include <cstdlib>

#include "vdstomgr/platform/os/local_time.h"
#include "vdstomgr/platform/utility/utility_lib.h"
#include "vdstomgr/session/database_session.h"

namespace vdstomgr::catalogue {

namespace {

/// Nothing for a bit that a flag byte does not have.
BYTE MaskOf(int bit) {
  return bit >= 0 && bit < 8 ? static_cast<BYTE>(1 << bit) : BYTE{0};
}

bool WriteFlag(DatabaseSession& db, const char* guid, BYTE mask, bool on) {
  Rows rows = db.Select("SELECT * FROM PhotoMaster WHERE szGUID = '%s'", Raw(guid));
  if (!rows.HasRow() || mask == 0) return false;
  const BYTE flags = rows->Byte("byteFlag");
  if (((flags & mask) != 0) == on) return true;
  CRkDaoRecordset& photo = rows->Recordset();
  photo.Edit();
  photo.SetFieldValue("byteFlag", static_cast<BYTE>(flags ^ mask));
  photo.SetFieldValue("byteInfoSync", BYTE{1});
  photo.Update();
  return true;
}

/// The local midnight of a day "YYYY-MM-DD" of whose number only the last digit is read; months and
/// days beyond their range carry over.
DWORD MidnightOf(const CString& day) {
  using namespace std::chrono;
  const auto number = [&](int first, int digits) { return std::atoi(day.Mid(first, digits)); };
  const year_month first = year(number(0, 4)) / January + months(number(5, 2) - 1);
  const sys_days date = sys_days(first / 1) + days(number(9, 2) - 1);
  return static_cast<DWORD>(os::SecondsOf(sys_seconds(date).time_since_epoch().count()));
}

}  // namespace

bool PhotoAttributes::SetRotate(const char* guid, BYTE rotation) {
  return m_db->ExecuteOnRow(
      "UPDATE PhotoMaster SET byteRotate = %d, byteInfoSync = 1 WHERE szGUID = '%s'", rotation,
      Raw(guid));
}

bool PhotoAttributes::SetRelativeRotate(const char* guid, BYTE turns) {
  return m_db->ExecuteOnRow(
      "UPDATE PhotoMaster SET byteRotate = (byteRotate + %d) MOD 4, byteInfoSync = 1 "
      "WHERE szGUID = '%s'",
      turns, Raw(guid));
}

bool PhotoAttributes::SetRelativeRotate(const CStringArray& guids, BYTE turns) {
  return m_db->ExecuteForEach(
      guids,
      "UPDATE PhotoMaster SET byteRotate = (byteRotate + %d) MOD 4, byteInfoSync = 1 "
      "WHERE szGUID = '%s'",
      turns, kEachGuid);
}

bool PhotoAttributes::SetTitle(const char* guid, const char* title) {
  return m_db->ForOne(guid, [&](const CStringArray& one) { return SetTitle(one, title); });
}

bool PhotoAttributes::SetTitle(const CStringArray& guids, const char* title) {
  return m_db->ExecuteForEach(
      guids, "UPDATE PhotoMaster SET szTitle = '%s', byteInfoSync = 1 WHERE szGUID = '%s'", title,
      kEachGuid);
}

bool PhotoAttributes::SetFileName(const char* guid, const char* name) {
  return m_db->ForOne(guid, [&](const CStringArray& one) { return SetFileName(one, name); });
}

bool PhotoAttributes::SetFileName(const CStringArray& guids, const char* name) {
  return m_db->ExecuteForEach(
      guids, "UPDATE PhotoMaster SET szFileName = '%s', byteInfoSync = 1 WHERE szGUID = '%s'", name,
      kEachGuid);
}

bool PhotoAttributes::SetDesc(const char* guid, const char* desc) {
  return m_db->ForOne(guid, [&](const CStringArray& one) { return SetDesc(one, desc); });
}

bool PhotoAttributes::SetDesc(const CStringArray& guids, const char* desc) {
  return m_db->ExecuteForEach(
      guids, "UPDATE PhotoMaster SET szDesc = '%s', byteInfoSync = 1 WHERE szGUID = '%s'", desc,
      kEachGuid);
}

bool PhotoAttributes::SetShootDate(const char* guid, std::int32_t time) {
  return m_db->ForOne(guid, [&](const CStringArray& one) { return SetShootDate(one, time); });
}

bool PhotoAttributes::SetShootDate(const CStringArray& guids, std::int32_t time) {
  return m_db->ExecuteForEach(
      guids, "UPDATE PhotoMaster SET szShootDate = '%s', byteInfoSync = 1 WHERE szGUID = '%s'",
      DateText{time}, kEachGuid);
}

bool PhotoAttributes::SetShooter(const char* guid, const char* shooter) {
  return m_db->ForOne(guid, [&](const CStringArray& one) { return SetShooter(one, shooter); });
}

bool PhotoAttributes::SetShooter(const CStringArray& guids, const char* shooter) {
  return m_db->ExecuteForEach(
      guids, "UPDATE PhotoMaster SET szShooter = '%s', byteInfoSync = 1 WHERE szGUID = '%s'",
      shooter, kEachGuid);
}

bool PhotoAttributes::SetFlag(const char* guid, int bit, bool on) {
  return m_db->Guarded(false, [&] { return WriteFlag(*m_db, guid, MaskOf(bit), on); });
}

bool PhotoAttributes::SetFlag(const CStringArray& guids, int bit, bool on) {
  return m_db->ForList(guids, [&] {
    const BYTE mask = MaskOf(bit);
    for (const CString& guid : guids) WriteFlag(*m_db, guid, mask, on);
    return mask != 0;
  });
}

bool PhotoAttributes::SetFolder(const char* guid, DWORD folder) {
  return m_db->ForOne(guid, [&](const CStringArray& one) { return SetFolder(one, folder); });
}

bool PhotoAttributes::SetFolder(const CStringArray& guids, DWORD folder) {
  return m_db->ExecuteForEach(guids, "UPDATE PhotoMaster SET dwFolderID = %d WHERE szGUID = '%s'",
                              folder, kEachGuid);
}

bool PhotoAttributes::SetPublic(const char* guid, BYTE is_public) {
  return m_db->ForOne(guid, [&](const CStringArray& one) { return SetPublic(one, is_public); });
}

bool PhotoAttributes::SetPublic(const CStringArray& guids, BYTE is_public) {
  return m_db->ExecuteForEach(guids, "UPDATE PhotoMaster SET bytePublic = %d WHERE szGUID = '%s'",
                              is_public, kEachGuid);
}

bool PhotoAttributes::SetCameraModel(const char* guid, const char* model) {
  return m_db->ForOne(guid, [&](const CStringArray& one) { return SetCameraModel(one, model); });
}

bool PhotoAttributes::SetCameraModel(const CStringArray& guids, const char* model) {
  return m_db->ExecuteForEach(
      guids, "UPDATE PhotoMaster SET szCameraModel = '%s' WHERE szGUID = '%s'", model, kEachGuid);
}

bool PhotoAttributes::SetCameraLens(const char* guid, const char* lens) {
  return m_db->ForOne(guid, [&](const CStringArray& one) { return SetCameraLens(one, lens); });
}

bool PhotoAttributes::SetCameraLens(const CStringArray& guids, const char* lens) {
  return m_db->ExecuteForEach(
      guids, "UPDATE PhotoMaster SET szCameraLens = '%s' WHERE szGUID = '%s'", lens, kEachGuid);
}

// The number stands in quotes, on purpose, and becomes one in the column.
bool PhotoAttributes::SetUploadEnd(const char* guid, BYTE end) {
  return m_db->Execute("UPDATE PhotoMaster SET byteUploadEnd = '%d' WHERE szGUID = '%s'", end,
                       Raw(guid));
}

bool PhotoAttributes::SetLinkUrl(const char* guid, BYTE link) {
  return m_db->ForOne(guid, [&](const CStringArray& one) { return SetLinkUrl(one, link); });
}

bool PhotoAttributes::SetLinkUrl(const CStringArray& guids, BYTE link) {
  return m_db->ExecuteForEach(
      guids, "UPDATE PhotoMaster SET byteLinkUrl = '%d' WHERE szGUID = '%s'", link, kEachGuid);
}

bool PhotoAttributes::DeletePhoto(const char* guid) {
  return m_db->ForOne(guid, [&](const CStringArray& one) { return DeletePhoto(one); });
}

bool PhotoAttributes::DeletePhoto(const CStringArray& guids) {
  return m_db->ExecuteForEach(guids, "DELETE FROM PhotoMaster WHERE szGUID = '%s'", kEachGuid);
}

bool PhotoAttributes::SetTagSyncFlag(const char* guid) {
  return m_db->ExecuteOnRow("UPDATE PhotoMaster SET byteTagSync = 1 WHERE szGUID = '%s'",
                            Raw(guid));
}

bool PhotoAttributes::SetTagSyncFlag(const CStringArray& guids) {
  return m_db->ExecuteForEach(guids, "UPDATE PhotoMaster SET byteTagSync = 1 WHERE szGUID = '%s'",
                              kEachGuid);
}

int PhotoAttributes::GetFlag(const char* guid, int bit) {
  const int flags =
      m_db->AskInteger(-1, "SELECT byteFlag FROM PhotoMaster WHERE szGUID = '%s'", Raw(guid));
  return flags < 0 ? -1 : (flags & MaskOf(bit)) != 0;
}

int PhotoAttributes::GetShootDateList(CDWordArray& out) {
  return m_db->Guarded(0, [&] {
    for (Row& row : m_db->Select("SELECT distinct szShootDay FROM PhotoMaster ORDER BY szShootDay"))
      if (const CString day = row.Text(); !day.IsEmpty()) out.Add(MidnightOf(day));
    return out.GetSize();
  });
}

}  // namespace vdstomgr::catalogue
