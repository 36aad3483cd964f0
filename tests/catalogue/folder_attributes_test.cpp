#include "operation_table.h"

namespace vdstomgr {
namespace {

/// Folders 1 > 2 > 3, with another set of attributes each, and five photos.
const std::vector<const char*> kFolders = {
    "INSERT INTO FolderInfo (dwFolderID, dwParentID, bSecureFolder, szFolderPassword, "
    "bSharedOption, nFolderUpDownType, bAllowPreviewImage, bAllowComment, nPhotoCount, byteCache, "
    "szIModifiedDate) values (1, 0, 1, 'pw', 1, 3, 5, 6, 11, 4, '2001-01-01 00:00:00')",
    "INSERT INTO FolderInfo (dwFolderID, dwParentID, bSecureFolder, bSharedOption, "
    "nFolderUpDownType, nPhotoCount, byteCache, szIModifiedDate) "
    "values (2, 1, 1, 2, 2, 12, 0, '2003-01-01 00:00:00')",
    "INSERT INTO FolderInfo (dwFolderID, dwParentID, szFolderPassword, bSharedOption, "
    "nFolderUpDownType, nPhotoCount, szIModifiedDate) "
    "values (3, 2, 'x', 1, 1, 13, '2002-01-01 00:00:00')",
    "INSERT INTO PhotoMaster (szGUID, dwFolderID, szLTBURL) values ('a', 1, 'u')",
    "INSERT INTO PhotoMaster (szGUID, dwFolderID, szLTBURL) values ('b', 1, '')",
    "INSERT INTO PhotoMaster (szGUID, dwFolderID, byteLockStatus) values ('c', 1, 1)",
    "INSERT INTO PhotoMaster (szGUID, dwFolderID) values ('d', 2)",
    "INSERT INTO PhotoMaster (szGUID, dwFolderID, byteLockStatus) values ('e', 3, 2)"};

TEST_F(OperationTest, FolderAttributesAreSet) {
  const char* const secure =
      "SELECT bSecureFolder, szFolderPassword, szSecureFolderSetter FROM FolderInfo "
      "ORDER BY dwFolderID";
  const char* const limits =
      "SELECT nFolderUpDownType, bAllowPreviewImage, bAllowComment FROM FolderInfo "
      "ORDER BY dwFolderID";
  Check({
      {"password", kFolders, ANSWER_OF(SetFolderPassword(2, 7, "n")), "1", secure,
       Split("1|pw|null,7|n|null,null|x|null", ",")},
      {"passwords and setter", kFolders, ANSWER_OF(SetFolderPassword({1, 3}, 8, "n", "s")), "1",
       secure, Split("8|n|s,1|null|null,8|n|s", ",")},
      {"a password goes in as it is: its quote breaks the statement", kFolders,
       ANSWER_OF(SetFolderPassword(2, 7, "it's")), "1", secure,
       Split("1|pw|null,1|null|null,null|x|null", ",")},
      {"shared", kFolders, ANSWER_OF(SetSharedOption({2, 3}, 9)), "1",
       "SELECT bSharedOption FROM FolderInfo ORDER BY dwFolderID", Split("1,9,9", ",")},
      {"limits of one folder", kFolders, ANSWER_OF(SetFolderUpDownType(1, 2, 8, 0, 9)), "1", limits,
       Split("2|8|9,2|null|null,1|null|null", ",")},
      {"limits of all below, the folder's own as they are", kFolders,
       ANSWER_OF(SetFolderUpDownType(1, 3, 5, 1, 6)), "1", limits, Split("3|5|6,3|5|6,3|5|6", ",")},
      {"limits of no folder", kFolders,
       [](OpenCatalogue& catalogue) {
         return Joined(catalogue.SetFolderUpDownType(kNoFolder, 1, 1, 1, 1),
                       catalogue.SetFolderUpDownType(9, 1, 1, 1, 1));
       },
       "0|0", limits, Split("3|5|6,2|null|null,1|null|null", ",")},
      {"creator", kFolders, ANSWER_OF(SetCreatorSubIDInfo(2, "me", 4)), "1",
       "SELECT szCreatorSubID, nCreatorSubIDType FROM FolderInfo WHERE dwFolderID = 2",
       Split("me|4", ",")},
      {"cache mark", kFolders,
       [](OpenCatalogue& catalogue) {
         return Answers{catalogue.GetFolderCache(1), catalogue.GetFolderCache(2),
                        catalogue.GetFolderCache(3), catalogue.ResetFolderCache(),
                        catalogue.SetFolderCache(3, true)};
       },
       "1|0|0|1|1", "SELECT byteCache FROM FolderInfo ORDER BY dwFolderID", Split("0,0,1", ",")},
      {"stored number of photos", kFolders, ANSWER_OF(UpdatePhotoCountAtFolder(1)), "3",
       "SELECT nPhotoCount FROM FolderInfo ORDER BY dwFolderID", Split("3,12,13", ",")},
  });
}

TEST_F(OperationTest, FolderAttributesAreAsked) {
  using Catalogue = OpenCatalogue;
  Check({
      {"shared", kFolders, ListedBy(&Catalogue::GetAllSharedFolder), "2|1,3"},
      {"secure", kFolders, ListedBy(&Catalogue::GetAllSecureFolder), "2|1,2"},
      {"limited", kFolders, ListedBy(&Catalogue::GetAllLimitedUpDownFolder), "2|2,3"},
      {"upload only", kFolders, ListedBy(&Catalogue::GetAllUpOnlyFolder), "1|2"},
      {"secure without a password", kFolders, ListedBy(&Catalogue::GetAllSecureFolderLocked),
       "1|2"},
      {"locked photos", kFolders, ListedBy(&Catalogue::GetAllLockedFile), "1|c"},
      {"passwords", kFolders,
       [](OpenCatalogue& catalogue) {
         CDWordArray ids;
         CStringArray passwords;
         const int first = catalogue.GetSecureFolderList(ids);
         const int both = catalogue.GetSecureFolderList(ids, &passwords);
         return Joined(first, both, Listed(ids), Listed(passwords));
       },
       "2|4|1,2,1,2|pw,"},
      {"photos", kFolders,
       [](OpenCatalogue& catalogue) {
         FolderArray folders;
         const int all = catalogue.GetAllFolderListForPhotoCount(folders);
         return Joined(catalogue.GetPhotoCountAtFolder(1), catalogue.GetRealPhotoCountAtFolder(1),
                       all, folders[1].dwFolderID, folders[1].nPhotoCount, folders[1].dwParentID);
       },
       "3|1|3|2|12|0"},
      {"changed lately", kFolders,
       [](OpenCatalogue& catalogue) {
         FolderArray folders;
         const auto time = CUtilityLib::GetTime("2002-01-01 00:00:00");
         const int count = catalogue.GetFolderListForNewFileList(folders, time);
         return Joined(count, folders[0].dwFolderID, folders[1].szFolderPassword);
       },
       "2|2|x"},
      {"times of the table",
       {"INSERT INTO VersionInfo (szName, szVersion) values ('LastFolderDBSyncTime', 'none')",
        "INSERT INTO VersionInfo (szName) values ('LastFolderDBRefreshTime')"},
       [](OpenCatalogue& catalogue) {
         std::int32_t unknown = 7, sync = 0, refresh = 0;
         return Answers{catalogue.GetLastFolderDBSyncTime(unknown),
                        unknown,
                        catalogue.SetLastFolderDBSyncTime(86'400),
                        catalogue.SetLastFolderDBRefreshTime(172'800),
                        catalogue.GetLastFolderDBSyncTime(sync),
                        sync,
                        catalogue.GetLastFolderDBRefreshTime(refresh),
                        refresh};
       },
       "1|7|1|1|1|86400|1|172800"},
  });
}

TEST_F(OperationTest, ActiveFolders) {
  const char* const active = "SELECT dwFolderID FROM Config_ActiveFolder ORDER BY dwFolderID";
  const char* const photos = "SELECT szGUID FROM PhotoMaster ORDER BY szGUID";
  std::vector<const char*> before = kFolders;
  before.push_back("INSERT INTO FolderInfo (dwFolderID) values (0)");
  before.push_back("INSERT INTO Config_ActiveFolder values (2)");
  Check({
      {"asked", before,
       [](OpenCatalogue& catalogue) {
         return Joined(catalogue.IsActiveFolder(1), catalogue.IsActiveFolder(2),
                       ListedBy(&OpenCatalogue::GetActiveFolder)(catalogue));
       },
       "0|1|1|2"},
      {"one", before, ANSWER_OF(SetActiveFolder(1)), "1", active, Split("1,2", ",")},
      {"some, one of them already", before, ANSWER_OF(AddActiveFolder({2, 9})), "1", active,
       Split("2,9", ",")},
      {"all but the root", before, ANSWER_OF(SetAllFolderActive()), "1", active, Split("1,2,3", ",")},
      {"no longer: its photos go", before, ANSWER_OF(DelActiveFolder(2)), "1", photos,
       Split("a,b,c,e", ",")},
      {"some no longer", before, ANSWER_OF(DelActiveFolder({1, 2})), "1", active, Split("", ",")},
      {"photos that are not active", before, ANSWER_OF(DelNoActivePhoto()), "1", photos,
       Split("d", ",")},
  });
}

}  // namespace
}  // namespace vdstomgr
