#include "vdstomgr/catalogue/resets.h"

#include <span>

#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/records/folder_ids.h"
#include "vdstomgr/session/database_session.h"
#include "vdstomgr/session/stale_at_exit.h"
#include "vdstomgr/tables/schema_statements.h"

namespace vdstomgr::catalogue {

namespace {

/// In the order in which they are emptied.
constexpr const char* kNotifyTables[] = {"NotifyFolder_Tree", "NotifyFolder_List", "NotifyTag_Tree",
                                         "NotifyTag_List", "NotifyTrash_List"};
constexpr const char* kHistoryTables[] = {
    "FolderInfo",          "AlbumInfo",       "CameraLens",      "CameraModel",
    "Config_ActiveFolder", "IX_PT",           "IX_PT1",          "MyCameraLens",
    "MyCameraModel",       "NotifyDate_List", "NotifyDate_Tree", "NotifyFolder_List",
    "NotifyFolder_Tree",   "NotifyTag_List",  "NotifyTag_Tree",  "NotifyTrash_List",
    "PhotoAlbum",          "PhotoMaster",     "PhotoRP",         "PhotoTag",
    "PhotoTrashMaster",    "RoomInfo",        "TagInfo",         "VersionInfo"};

void Empty(DatabaseSession& db, std::span<const char* const> tables) {
  for (const char* table : tables) db.RunOrThrow("DELETE FROM %s", Raw(table));
}

void InsertVersion(DatabaseSession& db, const char* table, const char* version) {
  db.RunOrThrow("INSERT INTO VersionInfo(szName, szVersion) values('%s', '%s')", table, version);
}

}  // namespace

bool Resets::ResetPhotoMaster() {
  return m_db->ExecuteOrFail("DELETE FROM PhotoMaster");
}

bool Resets::ResetPhotoTag() {
  return m_db->ExecuteOrFail("DELETE FROM PhotoTag");
}

bool Resets::ResetTrashPhoto() {
  return m_db->ExecuteOrFail("DELETE FROM PhotoTrashMaster");
}

bool Resets::ResetFolder() {
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->ExecuteOrFail(
      "DELETE FROM FolderInfo WHERE dwFolderID <> %d AND dwFolderID <> %d AND dwFolderID <> %d "
      "AND dwFolderID <> %d AND dwFolderID <> %d AND dwFolderID <> %d",
      kPersonalRoot, kPublicRoot, kGuestRoot, kPersonalTrash, kPublicTrash, kGuestTrash);
}

bool Resets::ResetActiveFolder() {
  return m_db->ExecuteOrFail("DELETE FROM Config_ActiveFolder");
}

bool Resets::ResetTagInfo() {
  return m_db->ExecuteOrFail("DELETE FROM TagInfo");
}

bool Resets::ResetRoomInfo() {
  return m_db->ExecuteOrFail("DELETE FROM RoomInfo WHERE dwRoomID <> 0");
}

bool Resets::ResetAlbumInfo() {
  return m_db->ExecuteOrFail("DELETE FROM AlbumInfo");
}

bool Resets::ResetPhotoAlbum() {
  return m_db->ExecuteOrFail("DELETE FROM PhotoAlbum");
}

bool Resets::ResetCameraModel() {
  return m_db->ExecuteOrFail("DELETE FROM CameraModel");
}

bool Resets::ResetCameraLens() {
  return m_db->ExecuteOrFail("DELETE FROM CameraLens");
}

bool Resets::ResetMyCameraModel() {
  return m_db->ExecuteOrFail("DELETE FROM MyCameraModel");
}

bool Resets::ResetMyCameraLens() {
  return m_db->ExecuteOrFail("DELETE FROM MyCameraLens");
}

bool Resets::ResetPhotoSyncProcess() {
  return m_db->ExecuteOrFail("DELETE FROM PhotoSyncProcess");
}

bool Resets::ResetPhotoRP() {
  return m_db->ExecuteOrFail("DELETE FROM PhotoRP");
}

bool Resets::ResetPhotoOP() {
  return m_db->ExecuteOrFail("DELETE FROM PhotoOP");
}

bool Resets::ResetAllNotify() {
  return m_db->Guarded(false, [&] {
    Empty(*m_db, kNotifyTables);
    return true;
  });
}

bool Resets::ResetAllPhotoInfo_ForHistoryManager() {
  const StaleAtExit change(m_csDAO, m_bFolderChanged);
  return m_db->Guarded(false, [&] {
    Empty(*m_db, kHistoryTables);
    m_db->RunOrThrow(
        "INSERT INTO RoomInfo (dwRoomID, szRoomName, byteOrgDown, byteUseComment) "
        "values (0, '%s', 0, 0)",
        FromUtf8("갤러리"));
    InsertVersion(*m_db, "PhotoMaster", kPhotoMasterVersion);
    InsertVersion(*m_db, "CameraModel", kCameraListVersion);
    InsertVersion(*m_db, "CameraLens", kCameraListVersion);
    return true;
  });
}

// The "=" refuses a second missing folder, on purpose.
bool Resets::ReviseLogicalError() {
  return m_db->ExecuteOrFail(
      "delete From PhotoMaster where dwFolderID = (select a.dwFolderID From "
      "(select distinct dwFolderID from PhotoMaster) as a Left Outer Join FolderInfo as b "
      "On a.dwFolderID = b.dwFolderID WHERE b.dwFolderID is NULL)");
}

}  // namespace vdstomgr::catalogue
