#include <algorithm>

#include "catalogue_test.h"

namespace vdstomgr {
namespace {

using testing::ElementsAre;

/// Folders 1 to 7: 0 > 1 > 2 > 3, 1 > 4, -10 > 5, 5 > 6, and 7 beside the roots.
class FolderTest : public CatalogueTest {
 protected:
  void SetUp() override {
    const struct {
      DWORD id, parent;
      const char* name;
    } kFolders[] = {{1, 0, "a"},           {2, 1, "c"}, {3, 2, "d"},        {4, 1, "b"},
                    {5, kPublicRoot, "e"}, {6, 5, "f"}, {7, kNoFolder, "g"}};
    for (const auto& f : kFolders) ASSERT_TRUE(AddFolder(f.id, f.parent, f.name));
  }

  int Changed() {  // does the next request rebuild the cache?
    int builds = 0;
    SetTraceHandler(
        [&](const char* text) { builds += std::string_view(text).starts_with("Create"); });
    catalogue_.GetSubFolderInfoCashForTree();
    SetTraceHandler(nullptr);
    return builds;
  }
};

std::vector<DWORD> Ids(const FolderArray& folders) {
  std::vector<DWORD> ids;
  for (const FOLDERINFO& folder : folders) ids.push_back(folder.dwFolderID);
  return ids;
}

/// A row with another value in every column that a record holds.
constexpr const char* kFullRow =
    "INSERT INTO FolderInfo (dwFolderID, dwParentID, szFolderName, szDesc, nSpaceType, szIconGUID, "
    "szIconURL, nPhotoCount, bSystemFolder, nFolderUpDownType, bAllowPreviewImage, bSharedOption, "
    "bSecureFolder, szGuestID, szFolderPassword, szSecureFolderSetter, szModifiedDate, "
    "szIModifiedDate, nCreatorSubIDType, szCreatorSubID, szMemoID, bAllowComment, nCommentCount, "
    "byteCache) values (50, 4, 'it''s 50%', 'ds', 2, 'ig', 'iu', -3, 1, 3, 4, 5, 6, 'gu', 'pw', "
    "'se', '2001-01-01 01:00:00', '2002-01-01 02:00:00', 7, 'cr', 'mm', 0, -8, 9)";

TEST_F(FolderTest, EveryColumnComesBackAsItWas) {
  const auto row = [&] { return Ask("SELECT * FROM FolderInfo WHERE dwFolderID = 50")[0]; };
  RunBeside(kFullRow);
  const std::string full = row();
  FOLDERINFO folder, other;
  ASSERT_TRUE(catalogue_.GetFolderInfo(50u, folder));
  EXPECT_STREQ(folder.szFolderName, "it's 50%");
  EXPECT_STREQ(folder.szFolderPassword, "pw");
  EXPECT_EQ(folder.nPhotoCount * 100 + folder.nCommentCount, -308);
  EXPECT_EQ(CUtilityLib::GetTime(folder.szIModifiedDate), "2002-01-01 02:00:00");
  other.dwFolderID = 50;
  EXPECT_TRUE(catalogue_.AddFolderInfo(other));
  EXPECT_EQ(row(), full) << "the id is taken";
  EXPECT_FALSE(catalogue_.AddFolder(FolderArray{other}));
  EXPECT_TRUE(catalogue_.SetFolderInfo(other));
  EXPECT_NE(row(), full);
  other.dwFolderID = 51;
  EXPECT_TRUE(catalogue_.SetFolderInfo(other));
  EXPECT_FALSE(catalogue_.FolderExistsInDB(51));
  EXPECT_TRUE(catalogue_.SetFolderInfo(FolderArray{other, folder}));
  EXPECT_TRUE(catalogue_.FolderExistsInDB(51));
  EXPECT_EQ(row(), full);
}

TEST_F(FolderTest, SingleValuesGoInWhole) {
  const std::string desc(200, 'd');
  EXPECT_TRUE(catalogue_.AddFolder(60, 1, "'n'", desc.c_str(), 0, "", "u", 1, true, 2, 1, 1, 1,
                                   "gu", "pw", "se", 86400, 0, 4, "cr", "me", 0, 8));
  EXPECT_THAT(
      Ask("SELECT szFolderName, bSystemFolder, szGuestID, szMemoID, byteCache FROM FolderInfo "
          "WHERE dwFolderID = 60"),
      ElementsAre("'n'|1|gu|me|null"));
  FOLDERINFO folder;
  ASSERT_TRUE(catalogue_.GetFolderInfo(60u, folder));
  EXPECT_EQ(std::string(folder.szDesc), desc.substr(0, 100));
  EXPECT_TRUE(catalogue_.SetFolderInfo(folder));  // a text that was read cut stays whole
  EXPECT_EQ(Ask("SELECT szDesc FROM FolderInfo WHERE dwFolderID = 60")[0], desc);
  EXPECT_EQ(folder.szModifiedDate, 86400);
  EXPECT_FALSE(catalogue_.AddFolder(61, 1, "n", std::string(256, 'd').c_str(), 0, "", "", 0, false,
                                    0, 0, 0, 0, "", "", "", 0, 0, 0, "", "", 0, 0));
  EXPECT_EQ(TakeReports(), Reports{3163});
}

TEST_F(FolderTest, AnUnknownSpaceIsFilledInAndStored) {
  RunBeside("UPDATE FolderInfo SET nSpaceType = NULL, szFolderName = 'x' WHERE dwFolderID = 6");
  FOLDERINFO folder;
  ASSERT_TRUE(catalogue_.GetFolderInfo(6u, folder));
  EXPECT_EQ(folder.nSpaceType, 1);
  EXPECT_EQ(Ask("SELECT nSpaceType FROM FolderInfo WHERE dwFolderID = 6")[0], "1");
  FolderArray list;
  EXPECT_EQ(catalogue_.GetFolderInfo(CDWordArray{6, 99, 0}, list), 2);
  EXPECT_EQ(list[0].nSpaceType, -1) << "the list form does not read it";
  EXPECT_FALSE(catalogue_.GetFolderInfo(99u, folder));
  EXPECT_EQ(catalogue_.GetFolderType(3u), 0u);
  EXPECT_EQ(catalogue_.GetFolderType(7u), kNoFolder);
  EXPECT_EQ(catalogue_.GetFolderType(99u), kNoFolder);
}

TEST_F(FolderTest, CharactersTheCodePageLacksSurviveARewrite) {
  catalogue_.CloseDB();
  SetTextCodePage(TextCodePage::utf8);
  RunBeside("UPDATE FolderInfo SET szFolderName = '😀가' WHERE dwFolderID = 1");
  SetTextCodePage(TextCodePage::korean949);
  ASSERT_TRUE(catalogue_.OpenDB(file_.c_str(), ""));
  FOLDERINFO folder;
  ASSERT_TRUE(catalogue_.GetFolderInfo(1u, folder));
  EXPECT_STREQ(folder.szFolderName, "?\xB0\xA1");
  CopyToFixed(folder.szDesc, "\xB3\xAA");
  EXPECT_TRUE(catalogue_.SetFolderInfo(folder));
  SetTextCodePage(TextCodePage::utf8);
  EXPECT_EQ(Ask("SELECT szFolderName, szDesc FROM FolderInfo WHERE dwFolderID = 1")[0], "😀가|나");
}

TEST_F(FolderTest, ARootWithoutANameGetsItsFixedOne) {
  catalogue_.RenameFolder(kGuestRoot, "", "");
  FOLDERINFO root;
  ASSERT_TRUE(catalogue_.GetFolderInfo(kGuestRoot, root));
  EXPECT_EQ(ToUtf8(root.szFolderName), "게스트 폴더");
  const auto name_in = [](const FolderArray& folders) {
    const auto root_at = std::ranges::find(folders, kGuestRoot, &FOLDERINFO::dwFolderID);
    return root_at == folders.end() ? "missing" : ToUtf8(root_at->szFolderName);
  };
  catalogue_.RenameFolder(kGuestRoot, "", "");
  FolderArray all, for_search;
  EXPECT_EQ(catalogue_.GetAllFolderList(all), 13);
  EXPECT_EQ(catalogue_.GetAllFolderListForSearch(for_search), 13);
  EXPECT_EQ(name_in(all), "게스트 폴더");
  EXPECT_EQ(name_in(for_search), "");
  FolderMap map;
  EXPECT_EQ(catalogue_.GetFolderInfoForTree(map), 13);
}

TEST_F(FolderTest, ListsAreOrderedAndAppended) {
  FolderArray folders{FOLDERINFO()};
  EXPECT_EQ(catalogue_.GetFolderList(folders, 1), 3);
  EXPECT_STREQ(folders[1].szFolderName, "b");
  CDWordArray ids{9};
  EXPECT_EQ(catalogue_.GetFolderList(ids, 1), 3);
  EXPECT_EQ(ids, (CDWordArray{9, 4, 2}));
  FolderArray unsorted;
  EXPECT_EQ(catalogue_.GetSubFolderInfo(1, unsorted), 2);
  EXPECT_EQ(catalogue_.GetSubFolderCountFromDB(1), 2);
  EXPECT_EQ(catalogue_.GetSubFolderID(1, "B"), 4u) << "case is disregarded";
  EXPECT_EQ(catalogue_.GetSubFolderID(1, "x"), kNoFolder);
  FOLDERINFO parent;
  EXPECT_TRUE(catalogue_.GetParentFolderInfo(4, parent));
  EXPECT_STREQ(parent.szFolderName, "a");
  EXPECT_FALSE(catalogue_.GetParentFolderInfo(0, parent));
}

TEST_F(FolderTest, PathsAndIdsFindEachOther) {
  const CString root = RootFolderName(0);
  const struct {
    DWORD id;
    CString path, path2;
  } kCases[] = {{3, root + "/a/c/d", "/a/c/d"},
                {1, root + "/a", "/a"},
                {0, root, "/"},
                {kPublicRoot, RootFolderName(kPublicRoot), "/"},
                {7, "g", "g"},
                {99, "", ""}};
  for (const auto& c : kCases) {
    EXPECT_EQ(catalogue_.GetServerPathName(c.id), c.path) << c.id;
    EXPECT_EQ(catalogue_.GetServerPathName2(c.id), c.path2) << c.id;
    EXPECT_EQ(catalogue_.GetFolderIDFromPath(c.path), c.id == 99 ? kNoFolder : c.id) << c.path;
  }
  EXPECT_EQ(catalogue_.GetFolderIDFromPath("//" + root + "//a/"), 1u);
  for (const char* none : {"", "/", "a/c", static_cast<const char*>(nullptr)})
    EXPECT_EQ(catalogue_.GetFolderIDFromPath(none), kNoFolder);
  EXPECT_EQ(catalogue_.GetFolderType(root + "/a/b"), 0u);
  EXPECT_EQ(catalogue_.GetFolderType(static_cast<const char*>(nullptr)), kNoFolder);
}

TEST_F(FolderTest, RootsAreFoundAndCirclesEnd) {
  const DWORD kCases[][2] = {{3, 0}, {6, kPublicRoot}, {0, 0},
                             {7, 7}, {99, 99},         {kGuestRoot, kGuestRoot}};
  for (const auto& [id, root] : kCases) EXPECT_EQ(catalogue_.GetRootParentFolderID(id), root) << id;
  EXPECT_TRUE(catalogue_.MoveFolder(1, 3));  // 1 > 2 > 3 > 1
  EXPECT_EQ(catalogue_.GetRootParentFolderID(2), kNoFolder);
  EXPECT_EQ(catalogue_.GetServerPathName(2), "");
  EXPECT_EQ(catalogue_.GetServerPathName2(2), "");
  CDWordArray cached, read;
  EXPECT_EQ(catalogue_.GetSubFolder(2, cached, true), 4);
  EXPECT_EQ(catalogue_.GetSubFolder2(2, read, true), 4);
  EXPECT_EQ(cached, read);
  int count = 0;
  EXPECT_EQ(catalogue_.SubFolderCountIsLarge(2, count, 1000, true), 1);
}

TEST_F(FolderTest, SubFoldersFollowTheirParents) {
  CDWordArray ids;
  EXPECT_EQ(catalogue_.GetSubFolder(0, ids, true), 4);
  EXPECT_EQ(std::ranges::find(ids, 3u) - std::ranges::find(ids, 2u), 1);
  EXPECT_EQ(catalogue_.GetSubFolder2(1, ids, false), 6);
  FolderArray folders, by_name;
  SubFolderMap map;
  EXPECT_EQ(catalogue_.GetSubFolderInfoForTree(map), 6);
  EXPECT_EQ(catalogue_.GetSubFolder(1, folders, true, &map), 3);
  DeleteSubFolders(map);
  CMap<DWORD, DWORD, DWORD, DWORD> visited;
  catalogue_.cGetSubFolder(1, by_name, visited, true);
  EXPECT_THAT(Ids(by_name), ElementsAre(4, 2, 3));
  EXPECT_THAT(Ids(folders), testing::UnorderedElementsAre(2, 3, 4));
}

TEST_F(FolderTest, TheCacheIsBuiltOncePerChange) {
  SubFolderMap* cache = catalogue_.GetSubFolderInfoCashForTree();
  EXPECT_EQ(cache, &catalogue_.m_mapSubFolderDef);
  EXPECT_EQ((*cache->Find(0))->GetSize(), 1);
  EXPECT_EQ(Changed(), 0);
  EXPECT_TRUE(catalogue_.MoveFolder(CDWordArray{2, 4}, 5));
  EXPECT_EQ(Changed(), 1);
  catalogue_.SetFolderUpDownType(3, 2, 1, 0, 1);
  EXPECT_EQ(Changed(), 1);
  catalogue_.SetFolderUpDownType(3, 2, 1, 1, 1);  // as they are
  catalogue_.SetFolderCache(2, true);
  catalogue_.DelActiveFolder(2);
  EXPECT_EQ(Changed(), 0);
  catalogue_.ResetFolder();
  EXPECT_EQ(Changed(), 1);
  catalogue_.ResetAllPhotoInfo_ForHistoryManager();
  EXPECT_EQ(Changed(), 1);
}

TEST_F(FolderTest, FreeNamesStartAtZero) {
  EXPECT_EQ(catalogue_.GetNewSubFolderName("new's", 1), "new's");
  EXPECT_EQ(catalogue_.GetNewSubFolderName("b", 1), "b (0)");
  AddFolder(8, 1, "b (0)");
  EXPECT_EQ(catalogue_.GetNewSubFolderName("b", 1), "b (1)");
  catalogue_.AddPhotoInfo(Photo("p", 1, "a (1).jpg"), false);
  EXPECT_EQ(catalogue_.GetEditSaveFileName("a.jpg", 1), "a (2).jpg");
  EXPECT_EQ(catalogue_.GetEditSaveFileName("a.jpg", 2), "a (1).jpg");
}

TEST_F(FolderTest, TheLimitOfLargeTreesIsCountedOnce) {
  int count = 0;
  EXPECT_EQ(catalogue_.SubFolderCountIsLarge(0, count, 3, true), 1);
  EXPECT_EQ(count, 4);
  count = 0;
  EXPECT_EQ(catalogue_.SubFolderCountIsLarge(0, count, 4, true), 0);
  count = 0;
  EXPECT_EQ(catalogue_.SubFolderCountIsLarge(1, count, 1, false), 1);
  EXPECT_EQ(catalogue_.SubFolderCountIsLarge(99, count, -1, true), 0) << "no children, no answer";
  RunBeside("UPDATE FolderInfo SET bSecureFolder = 1, nFolderUpDownType = 3 WHERE dwFolderID < 3");
  const int secure = catalogue_.GetAllSecureFolderCount();
  EXPECT_EQ(catalogue_.GetAllSharedFolderCount() + catalogue_.GetAllUpOnlyFolderCount(), 0);
  EXPECT_EQ(catalogue_.GetAllLimitedUpDownFolderCount(), 5);
  EXPECT_GT(secure, 4);
  EXPECT_EQ(catalogue_.SubFolderCountIsLargeForCheckFolderAuthorityDownload(0, true), 0);
  RunBeside("UPDATE FolderInfo SET bSecureFolder = 0");
  EXPECT_EQ(catalogue_.SubFolderCountIsLargeForCheckFolderAuthorityDownload(0, true), 0);
  EXPECT_EQ(catalogue_.SubFolderCountIsLargeForCheckFolderAuthorityEdit(0, true), 0) << "limit 5";
}

TEST_F(FolderTest, DeletionsAreToldAndSpareTheCataloguesOwnFolders) {
  std::vector<std::pair<DWORD, DWORD>> told;
  const CRkCallback progress = [&](DWORD done, DWORD total, const char* text, bool flag) {
    EXPECT_TRUE(text == nullptr && !flag);
    told.emplace_back(done, total);
  };
  EXPECT_TRUE(catalogue_.DeleteFoldersAndRelations({}, true, progress));
  EXPECT_TRUE(catalogue_.DeleteFoldersAndRelations({1, 4}, false, progress));
  EXPECT_TRUE(catalogue_.DeletePhotosAndRelations(CStringArray(), progress));
  EXPECT_TRUE(catalogue_.DeletePhotosAndRelations({"a", "b", "c"}, progress));
  EXPECT_THAT(told, ElementsAre(std::pair(0u, 2u), std::pair(1u, 2u), std::pair(0u, 3u),
                                std::pair(1u, 3u), std::pair(2u, 3u)));
  for (const int id : {0, -1, -2, -10, -12, -20, -22, -250, -251, -252})
    catalogue_.DeleteFolder(FolderID(id));
  EXPECT_EQ(catalogue_.GetFolderCount(), 13);
}

}  // namespace
}  // namespace vdstomgr
