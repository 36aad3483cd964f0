#include "vdstomgr/catalogue/sync_process.h"

#include "vdstomgr/session/database_session.h"
#include "vdstomgr/tables/photo_columns.h"

namespace vdstomgr::catalogue {

namespace {

template <auto member>
constexpr Column<PHOTOSYNC_INFO> Mark(const char* name) {
  return {name,
          [](const dao::Field& field, PHOTOSYNC_INFO& info, std::string&) {
            info.*member = AsInteger(field) != 0;
          },
          nullptr};
}

/// They stand in one row with the photo, which kPhotoColumns reads.
constexpr ColumnMap kMarkColumns(std::array{
    Mark<&PHOTOSYNC_INFO::bInfoSync>("bInfoSync"),
    Mark<&PHOTOSYNC_INFO::bTagSync>("bTagSync"),
});

PHOTOSYNC_INFO PendingPhoto(DatabaseSession& db, Row& row) {
  PHOTOSYNC_INFO info = kMarkColumns.ReadFresh(row.Recordset());
  kPhotoColumns.Read(row.Recordset(), info.Photo);
  // A step instead of GetTagLists, which would answer a failure as no tags, and they would be sent.
  if (info.bTagSync) {
    AppendRows(db.Select("SELECT distinct b.dwTagID, b.szTagName FROM PhotoTag as a INNER JOIN "
                         "TagInfo as b ON a.dwTagID = b.dwTagID WHERE a.szGUID = '%s'",
                         Raw(info.Photo.szGUID)),
               info.TagIDs);
  }
  return info;
}

}  // namespace

void SyncProcess::MovePhotoSyncFlag() {
  m_db->Guarded([&] {
    m_db->Run(
        "UPDATE PhotoSyncProcess SET byteInfoSync = 1 "
        "WHERE szGUID IN (SELECT szGUID From PhotoMaster WHERE byteInfoSync = 1)");
    m_db->Run(
        "UPDATE PhotoSyncProcess SET byteTagSync = 1 "
        "WHERE szGUID IN (SELECT szGUID From PhotoMaster WHERE byteTagSync = 1)");
    m_db->Run(
        "UPDATE PhotoMaster SET byteInfoSync = 0, byteTagSync = 0 "
        "WHERE szGUID IN (SELECT szGUID From PhotoSyncProcess)");
    m_db->Run(
        "INSERT INTO PhotoSyncProcess (szGUID, byteInfoSync, byteTagSync) "
        "SELECT szGUID, byteInfoSync, byteTagSync From PhotoMaster "
        "WHERE byteInfoSync = 1 OR byteTagSync = 1");
    m_db->Run(
        "UPDATE PhotoMaster SET byteInfoSync = 0, byteTagSync = 0 "
        "WHERE byteInfoSync = 1 OR byteTagSync = 1");
  });
}

bool SyncProcess::GetPhotoSyncAllInfo(PhotoSyncArray& out, int maxCount) {
  return m_db->Guarded(false, [&] {
    for (Row& row : m_db->Select(
             "SELECT top %d b.byteInfoSync as bInfoSync, b.byteTagSync as bTagSync, a.* "
             "FROM PhotoMaster as a INNER JOIN PhotoSyncProcess as b ON a.szGUID = b.szGUID",
             maxCount))
      out.Add(PendingPhoto(*m_db, row));
    return true;
  });
}

bool SyncProcess::DelPhotoSyncAllInfo(const PhotoSyncArray& sent) {
  return m_db->ForEach(sent, [&](const PHOTOSYNC_INFO& info) {
    m_db->Run("DELETE FROM PhotoSyncProcess WHERE szGUID = '%s'", Raw(info.Photo.szGUID));
  });
}

bool SyncProcess::DelPhotoSyncProcess(const CStringArray& guids) {
  return m_db->ForEach(guids, [&](const CString& guid) {
    m_db->Run("UPDATE PhotoMaster SET byteInfoSync = 0, byteTagSync = 0 WHERE szGUID = '%s'",
              Raw(guid));
    m_db->Run("DELETE FROM PhotoSyncProcess WHERE szGUID = '%s'", Raw(guid));
  });
}

}  // namespace vdstomgr::catalogue
