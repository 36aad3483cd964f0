#include <map>

#include "operation_table.h"
#include "vdstomgr/session/database_session.h"

namespace vdstomgr {
namespace {

using testing::ElementsAre;

/// Every table, by the columns that a row of it needs.
const struct {
  const char* columns;
  const char* values;
  std::vector<const char*> tables;
} kRows[] = {
    {"dwFolderID",
     "7",
     {"Config_ActiveFolder", "FolderInfo", "NotifyFolder_List", "NotifyFolder_Tree"}},
    {"dtDateID", "7", {"NotifyDate_List", "NotifyDate_Tree"}},
    {"dwTagID", "7", {"NotifyTag_List", "NotifyTag_Tree", "TagInfo"}},
    {"dwRoomID", "7", {"RoomInfo"}},
    {"dwAlbumID", "7", {"AlbumInfo"}},
    {"szName", "7", {"CameraLens", "CameraModel", "MyCameraLens", "MyCameraModel", "VersionInfo"}},
    {"szGUID",
     "7",
     {"IX_PT", "IX_PT1", "NotifyTrash_List", "PhotoMaster", "PhotoOP", "PhotoRP",
      "PhotoSyncProcess", "PhotoTrashMaster", "SyncUploadList", "UploadList"}},
    {"szGUID, dwTagID", "7, 7", {"PhotoTag", "UploadTag"}},
    {"szGUID, dwRoomID, dwAlbumID", "7, 7, 7", {"PhotoAlbum", "UploadAlbum"}}};

class ResetTest : public CatalogueTest {
 protected:
  /// Puts a row into every table, resets, and answers the tables that have fewer rows then.
  CString EmptiedBy(bool (OpenCatalogue::*reset)()) {
    std::map<CString, int> before;
    const auto count = [&](const char* table) {
      return catalogue_.m_db->AskInteger(-1, "SELECT Count(*) FROM %s", Raw(table));
    };
    for (const auto& [columns, values, tables] : kRows)
      for (const char* table : tables) {
        catalogue_.m_db->Execute("INSERT INTO %s (%s) values (%s)", Raw(table), Raw(columns),
                                 Raw(values));
        before[table] = count(table);
      }
    EXPECT_TRUE((catalogue_.*reset)());
    CStringArray emptied;
    for (const auto& [table, rows] : before)
      if (count(table) < rows) emptied.Add(table);
    return Listed(emptied);
  }
};

TEST_F(ResetTest, EachEmptiesItsTables) {
  const struct {
    bool (OpenCatalogue::*reset)();
    const char* emptied;
  } kResets[] = {
      {&OpenCatalogue::ResetPhotoMaster, "PhotoMaster"},
      {&OpenCatalogue::ResetPhotoTag, "PhotoTag"},
      {&OpenCatalogue::ResetTrashPhoto, "PhotoTrashMaster"},
      {&OpenCatalogue::ResetFolder, "FolderInfo"},
      {&OpenCatalogue::ResetActiveFolder, "Config_ActiveFolder"},
      {&OpenCatalogue::ResetTagInfo, "TagInfo"},
      {&OpenCatalogue::ResetRoomInfo, "RoomInfo"},
      {&OpenCatalogue::ResetAlbumInfo, "AlbumInfo"},
      {&OpenCatalogue::ResetPhotoAlbum, "PhotoAlbum"},
      {&OpenCatalogue::ResetCameraModel, "CameraModel"},
      {&OpenCatalogue::ResetCameraLens, "CameraLens"},
      {&OpenCatalogue::ResetMyCameraModel, "MyCameraModel"},
      {&OpenCatalogue::ResetMyCameraLens, "MyCameraLens"},
      {&OpenCatalogue::ResetPhotoSyncProcess, "PhotoSyncProcess"},
      {&OpenCatalogue::ResetPhotoRP, "PhotoRP"},
      {&OpenCatalogue::ResetPhotoOP, "PhotoOP"},
      {&OpenCatalogue::ResetAllNotify,
       "NotifyFolder_List,NotifyFolder_Tree,NotifyTag_List,NotifyTag_Tree,NotifyTrash_List"},
      {&OpenCatalogue::ResetAllPhotoInfo_ForHistoryManager,
       "AlbumInfo,CameraLens,CameraModel,Config_ActiveFolder,FolderInfo,IX_PT,IX_PT1,MyCameraLens,"
       "MyCameraModel,NotifyDate_List,NotifyDate_Tree,NotifyFolder_List,NotifyFolder_Tree,"
       "NotifyTag_List,NotifyTag_Tree,NotifyTrash_List,PhotoAlbum,PhotoMaster,PhotoRP,PhotoTag,"
       "PhotoTrashMaster,TagInfo,VersionInfo"}};
  for (const auto& [reset, emptied] : kResets) EXPECT_EQ(EmptiedBy(reset), emptied);
  EXPECT_THAT(Ask("SELECT * FROM RoomInfo"), ElementsAre("0|" + FromUtf8("갤러리") + "|0|0"));
  EXPECT_THAT(Ask("SELECT * FROM VersionInfo ORDER BY szName"),
              ElementsAre("CameraLens|2000-01-01 00:00:00", "CameraModel|2000-01-01 00:00:00",
                          "PhotoMaster|2022-02-15 12:00:00"));
}

TEST_F(ResetTest, FixedRowsStay) {
  RunBeside("INSERT INTO RoomInfo (dwRoomID, szRoomName) values (0, 'x')");
  AddFolder(5, 0, "x");
  EXPECT_EQ(EmptiedBy(&OpenCatalogue::ResetFolder), "FolderInfo");
  EXPECT_EQ(EmptiedBy(&OpenCatalogue::ResetRoomInfo), "RoomInfo");
  EXPECT_THAT(Ask("SELECT szRoomName FROM RoomInfo"), ElementsAre("x"));
  EXPECT_TRUE(catalogue_.ResetFolder());
  EXPECT_THAT(Ask("SELECT dwFolderID FROM FolderInfo ORDER BY dwFolderID"),
              ElementsAre("-22", "-20", "-12", "-10", "-2", "0"));
}

TEST_F(ResetTest, AFailureEndsTheSequence) {
  RunBeside("DROP TABLE IX_PT");
  catalogue_.AddMyLens("kept");
  EXPECT_FALSE(catalogue_.ResetAllPhotoInfo_ForHistoryManager());
  EXPECT_EQ(TakeReports(), Reports{3078});
  EXPECT_EQ(catalogue_.GetFolderCount(), 0);
  EXPECT_THAT(Ask("SELECT szName FROM MyCameraLens"), ElementsAre("kept"));
}

TEST_F(OperationTest, PhotosOfAMissingFolder) {
  const char* const photos = "SELECT szGUID FROM PhotoMaster ORDER BY szGUID";
  const char* const here = "INSERT INTO FolderInfo (dwFolderID) values (1)";
  const char* const a = "INSERT INTO PhotoMaster (szGUID, dwFolderID) values ('a', 1)";
  const char* const b = "INSERT INTO PhotoMaster (szGUID, dwFolderID) values ('b', 2)";
  const char* const c = "INSERT INTO PhotoMaster (szGUID, dwFolderID) values ('c', 2)";
  const char* const d = "INSERT INTO PhotoMaster (szGUID, dwFolderID) values ('d', 3)";
  Check({{"none is missing", {here, a}, ANSWER_OF(ReviseLogicalError()), "1", photos, Split("a", ",")},
         {"one is", {here, a, b, c}, ANSWER_OF(ReviseLogicalError()), "1", photos, Split("a", ",")},
         {"two are",
          {here, a, b, d},
          ANSWER_OF(ReviseLogicalError()),
          "0",
          photos,
          Split("a,b,d", ",")}});
  EXPECT_EQ(TakeReports(), Reports{3354});
}

}  // namespace
}  // namespace vdstomgr
