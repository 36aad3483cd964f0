#include "operation_table.h"

namespace vdstomgr {

namespace {

constexpr const char kTables[] =
    "Config_ActiveFolder FolderInfo TagInfo PhotoTag RoomInfo AlbumInfo PhotoAlbum UploadList "
    "SyncUploadList UploadTag "
    "UploadAlbum PhotoRP PhotoOP CameraModel CameraLens MyCameraModel MyCameraLens VersionInfo "
    "PhotoMaster PhotoTrashMaster PhotoSyncProcess NotifyFolder_Tree NotifyFolder_List "
    "NotifyDate_Tree NotifyDate_List NotifyTag_Tree NotifyTag_List NotifyTrash_List IX_PT IX_PT1";

}  // namespace

void OperationTest::Check(const std::vector<Operation>& operations) {
  for (const Operation& operation : operations) {
    SCOPED_TRACE(operation.what);
    {
      CRkDaoDatabase database;
      database.Open(file_.c_str());
      for (const std::string& table : Split(kTables, " "))
        database.ExecuteOrThrow(("DELETE FROM " + table).c_str());
      for (const char* statement : operation.before) database.ExecuteOrThrow(statement);
    }
    EXPECT_EQ(operation.call(catalogue_), operation.answer);
    if (operation.query != nullptr) {
      EXPECT_EQ(Ask(operation.query), operation.after);
    }
  }
}

}  // namespace vdstomgr
