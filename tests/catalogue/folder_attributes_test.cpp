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
  Check({
      {"passwords and setter", kFolders, ANSWER_OF(SetFolderPassword({1, 3}, 8, "n", "s")), "1",
       secure, Split("8|n|s,1|null|null,8|n|s", ",")},
      {"creator", kFolders, ANSWER_OF(SetCreatorSubIDInfo(2, "me", 4)), "1",
       "SELECT szCreatorSubID, nCreatorSubIDType FROM FolderInfo WHERE dwFolderID = 2",
       Split("me|4", ",")},
  });
}

TEST_F(OperationTest, FolderAttributesAreAsked) {
  using Catalogue = OpenCatalogue;
  Check({
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

}  // namespace
}  // namespace vdstomgr
