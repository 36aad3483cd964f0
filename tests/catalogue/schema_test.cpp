#include "catalogue_test.h"

namespace vdstomgr {
namespace {

using testing::ElementsAre;
using SchemaTest = CatalogueTest;

TEST_F(SchemaTest, ANewCatalogueHasItsFirstRowsOnly) {
  EXPECT_THAT(
      Ask("SELECT dwFolderID, dwParentID, nSpaceType FROM FolderInfo ORDER BY dwFolderID"),
      ElementsAre("-22|-1|null", "-20|-1|2", "-12|-1|null", "-10|-1|1", "-2|-1|null", "0|-1|0"));
  EXPECT_THAT(
      Ask("SELECT szName, szVersion FROM VersionInfo ORDER BY szName"),
      ElementsAre("CameraLens|2000-01-01 00:00:00", "CameraModel|2000-01-01 00:00:00",
                  "LastFolderDBRefreshTime|2000-01-01 00:00:00",
                  "LastFolderDBSyncTime|2000-01-01 00:00:00", "PhotoMaster|2022-02-15 12:00:00",
                  "PhotoTrashMaster|2016-06-16 12:00:00", "SyncUploadList|2016-01-09 00:00:02"));
  catalogue_.InitFieldData();
  EXPECT_EQ(catalogue_.GetFolderCount(), 6);
}

TEST_F(SchemaTest, VersionsAreChangedButNeverAdded) {
  EXPECT_TRUE(catalogue_.SetVersionInfo("CameraLens", "2001-01-01 00:00:00"));
  EXPECT_EQ(catalogue_.GetVersionInfo("CameraLens"), "2001-01-01 00:00:00");
  EXPECT_TRUE(catalogue_.SetVersionInfo("Nobody", "2001-01-01 00:00:00"));
  EXPECT_EQ(catalogue_.GetVersionInfo("Nobody"), "");
}

TEST_F(SchemaTest, AnOldTrashTableIsMadeAnewAndEmpty) {
  const auto check = [&](const char* prepare) {
    RunBeside("INSERT INTO PhotoTrashMaster (szGUID) values ('t')");
    if (prepare) RunBeside(prepare);
    EXPECT_TRUE(catalogue_.CheckPhotoMasterDBVersion());
    const bool kept = !Ask("SELECT * FROM PhotoTrashMaster").empty();
    RunBeside("DELETE FROM PhotoTrashMaster");
    return kept;
  };
  EXPECT_TRUE(check(nullptr));
  EXPECT_FALSE(check("UPDATE VersionInfo SET szVersion = 'x' WHERE szName = 'PhotoTrashMaster'"));
  EXPECT_EQ(catalogue_.GetVersionInfo("PhotoTrashMaster"), "2016-06-16 12:00:00");
  EXPECT_TRUE(check(nullptr));
  EXPECT_FALSE(check("DELETE FROM VersionInfo WHERE szName = 'PhotoTrashMaster'"));
  EXPECT_FALSE(check(nullptr)) << "a missing row stays missing";
}

TEST_F(SchemaTest, AnOldPhotoTableIsToldAndNothingIsTouched) {
  RunBeside("INSERT INTO PhotoTrashMaster (szGUID) values ('t')");
  RunBeside("UPDATE VersionInfo SET szVersion = '2000-01-01 00:00:00' WHERE szName <> 'x'");
  EXPECT_FALSE(catalogue_.CheckPhotoMasterDBVersion());
  EXPECT_EQ(Ask("SELECT * FROM PhotoTrashMaster").size(), 1u);
}

TEST_F(SchemaTest, TheSyncQueueIsMadeAnewByItsVersion) {
  CRkDaoDatabase database;
  database.Open(file_.c_str());
  const auto call = [&](const char* prepare) {
    database.Execute("DELETE FROM SyncUploadList");
    database.Execute("INSERT INTO SyncUploadList (szGUID) values ('s')");
    database.Execute(prepare);
    EXPECT_TRUE(catalogue_.CreateSyncUploadListTable(database));
    return Ask("SELECT szGUID FROM SyncUploadList").size();
  };
  EXPECT_EQ(call(""), 1u);
  EXPECT_EQ(call("DELETE FROM VersionInfo WHERE szName = 'SyncUploadList'"), 1u);
  EXPECT_EQ(catalogue_.GetVersionInfo("SyncUploadList"), "2016-01-09 00:00:02");
  EXPECT_EQ(call("UPDATE VersionInfo SET szVersion = 'x' WHERE szName = 'SyncUploadList'"), 0u);
  EXPECT_EQ(call(""), 0u) << "an old row keeps its version, so every call makes the table anew";
  EXPECT_EQ(catalogue_.GetVersionInfo("SyncUploadList"), "x");
}

TEST_F(SchemaTest, FoldersAreSplitIntoActiveAndOther) {
  RunBeside("INSERT INTO Config_ActiveFolder (dwFolderID) values (-10)");
  CDWordArray active{77}, other;
  EXPECT_EQ(catalogue_.GetVersionFolderList(active, other), 7);
  EXPECT_EQ(active, (CDWordArray{77, kPublicRoot}));
  EXPECT_EQ(other.GetSize(), 5) << "folder 0 without a row is no active folder";
}

}  // namespace
}  // namespace vdstomgr
