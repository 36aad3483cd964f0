#include "search_test.h"

namespace vdstomgr {
namespace {

constexpr DWORD kNone = 0xFFFFFFFF;

std::string Ids(const FolderArray& folders) {
  CDWordArray ids;
  for (const FOLDERINFO& folder : folders) ids.Add(folder.dwFolderID);
  return Listed(ids);
}

std::string Guids(const PhotoArray& photos) {
  CStringArray guids;
  for (const PHOTOINFO& photo : photos) guids.Add(photo.szGUID);
  return Listed(guids);
}

TEST_F(SearchTest, OpensWithTheStartOfItsPassword) {
  const std::string secret = Path("secret.db");
  search_.CloseDB();
  EXPECT_TRUE(search_.CreateDB(secret.c_str(), "비밀번호비밀번호12345"));
  EXPECT_FALSE(search_.OpenDB(secret.c_str(), "비밀"));
  EXPECT_EQ(std::exchange(reports_, {}), std::vector{3031});
  EXPECT_TRUE(search_.OpenDB(secret.c_str(), "비밀번호비밀번호1234 and what is cut"));
  EXPECT_FALSE(search_.OpenDB(secret.c_str(), "비밀번호비밀번호1234"));
  EXPECT_TRUE(search_.AddFolder(1, "sea", 0, 0));
  EXPECT_TRUE(search_.RefreshDB());
  EXPECT_EQ(search_.GetFolderName(1), "sea");
  EXPECT_TRUE(search_.CloseDB());
  search_.DeleteDB(secret.c_str());
  EXPECT_FALSE(std::filesystem::exists(secret));
}

TEST_F(SearchTest, WorksUnderTheCataloguesLockOrItsOwn) {
  CRkPhotoDBManager catalogue;
  search_.SetDAOCriticalSection(catalogue.GetDAOCriticalSection());
  EXPECT_EQ(search_.GetTotalNoOfFiles(), 0);
  search_.SetDAOCriticalSection(nullptr);
  EXPECT_EQ(search_.GetTotalNoOfFiles(), 0);
  search_.SetTime(1'000'000'000);
  EXPECT_EQ(search_.GetDBTime().Left(4), "2001");
}

TEST_F(SearchTest, ComparesVersions) {
  EXPECT_EQ(
      Ask("SELECT * FROM VersionInfo ORDER BY szName"),
      Split("SearchFolderInfo|2014-10-01 00:00:00,SearchPhotoMaster|2014-10-01 00:00:00", ","));
  const std::pair<const char*, int> cases[] = {
      {"UPDATE VersionInfo SET szVersion = NULL WHERE szName = 'SearchPhotoMaster'", 1},
      {"DELETE FROM VersionInfo WHERE szName = 'SearchPhotoMaster'", 1},
      {"UPDATE VersionInfo SET szVersion = 'old' WHERE szName = 'SearchFolderInfo'", 0},
      {"DELETE FROM VersionInfo WHERE szName = 'SearchFolderInfo'", 1}};
  EXPECT_EQ(search_.CheckVersion(), 1);
  for (const auto& [statement, version] : cases) {
    Run({statement});
    EXPECT_EQ(search_.CheckVersion(), version) << statement;
  }
}

class SearchFolderTest : public SearchTest {
 protected:
  void SetUp() override {
    FolderArray folders;
    for (const auto& [id, parent, name] : {std::tuple(0, -1, "Mine"),
                                           {-10, -1, ""},
                                           {1, 0, "b"},
                                           {2, 1, "Sea"},
                                           {3, 1, "air"},
                                           {4, -10, "shared"},
                                           {5, 4, "deep"},
                                           {6, 77, "lost"},
                                           {8, 9, "x"},
                                           {9, 8, "y"}}) {
      FOLDERINFO folder;
      folder.dwFolderID = FolderID(id);
      folder.dwParentID = FolderID(parent);
      CopyToFixed(folder.szFolderName, name);
      folder.szModifiedDate = 1'000'000'000 + id;
      folders.Add(folder);
    }
    EXPECT_TRUE(search_.AddFolder(folders));
  }
};

TEST_F(SearchFolderTest, AreReadOneByOne) {
  FOLDERINFO folder;
  EXPECT_TRUE(search_.GetFolderInfo(2, folder));
  EXPECT_EQ(Joined(folder.dwFolderID, folder.dwParentID, folder.szFolderName, folder.szModifiedDate,
                   folder.nSpaceType),
            "2|1|Sea|1000000002|-1");
  Run({"UPDATE SearchFolderInfo SET szModifiedDate = 'no date' WHERE dwFolderID = 2"});
  EXPECT_TRUE(search_.GetFolderInfo(2, folder));
  EXPECT_EQ(folder.szModifiedDate, -1);
  EXPECT_FALSE(search_.GetFolderInfo(99, folder));
  FOLDERINFO parent;
  EXPECT_TRUE(search_.GetParentFolderInfo(4, parent));
  EXPECT_EQ(Joined(parent.dwFolderID, parent.dwParentID, parent.szFolderName),
            "4294967286|4294967295|");
  Run({"INSERT INTO SearchFolderInfo (dwFolderID, dwParentID) values (-250, 1)"});
  for (const DWORD id : {FolderID(-250), kPersonalRoot, FolderID(99)})
    EXPECT_FALSE(search_.GetParentFolderInfo(id, parent));
  FolderArray some;
  EXPECT_EQ(search_.GetFolderInfo(CDWordArray{3, 99, 1}, some), 2);
  EXPECT_EQ(Ids(some), "3,1");
  EXPECT_EQ(Joined(search_.GetFolderName(3), search_.GetFolderName(99),
                   search_.GetParentFolderID(3), search_.GetParentFolderID(99)),
            Joined("air", "", 1, kNone));
}

TEST_F(SearchFolderTest, AreListed) {
  FolderArray children, below, shallow;
  CDWordArray ids{7}, ids_below{7};
  EXPECT_EQ(search_.GetFolderList(children, 1), 2);
  EXPECT_EQ(search_.GetFolderList(ids, 1), 3);
  EXPECT_EQ(search_.GetSubFolder(0, below, true), 3);
  EXPECT_EQ(search_.GetSubFolder(0, shallow, false), 1);
  EXPECT_EQ(search_.GetSubFolder(8, ids_below, true), 3);  // a circle ends
  EXPECT_EQ(Joined(Ids(children), Listed(ids), Ids(below), Listed(ids_below)),
            "3,2|7,3,2|1,3,2|7,9,8");
  FolderMap all;
  SubFolderMap by_parent;
  EXPECT_EQ(Joined(search_.GetFolderInfoMap(all), search_.GetTotalNoOfFolders()), "10|10");
  EXPECT_EQ(search_.GetSubFolderInfoMap(by_parent), 7);
  EXPECT_EQ(Ids(*by_parent[1]) + (by_parent.Find(kNone) ? " and roots" : ""), "3,2");
  DeleteSubFolders(by_parent);
  EXPECT_EQ(search_.GetSubFolderInfoMapCash()->GetCount(), 7);
  EXPECT_TRUE(search_.AddFolder(50, "new", 50, 0));
  EXPECT_EQ(search_.GetSubFolderInfoMapCash()->GetCount(), 7);
  search_.RefreshDB();
  EXPECT_EQ(search_.GetSubFolderInfoMapCash()->GetCount(), 8);
}

TEST_F(SearchFolderTest, KnowTheirRootAndPath) {
  struct Case {
    int id;
    std::int64_t root;
    int type;
    const char* path;
  };
  for (const Case& c : {Case{2, 1, 0, "Mine/b/Sea"},
                        {1, 1, 0, "Mine/b"},
                        {0, 0, -1, "Mine"},
                        {5, -10, 1, "/shared/deep"},
                        {-10, -10, -1, ""},
                        {6, 77, -1, "lost"},
                        {99, 99, -1, ""},
                        {8, -1, -1, ""}}) {
    EXPECT_EQ(search_.GetRootParentFolderID(FolderID(c.id)), FolderID(int(c.root))) << c.id;
    EXPECT_EQ(search_.GetFolderType(FolderID(c.id)), c.type) << c.id;
    EXPECT_EQ(search_.GetServerPathName(FolderID(c.id)), c.path) << c.id;
  }
  Run({"UPDATE SearchFolderInfo SET szFolderName = 'Ocean' WHERE dwFolderID = 2"});
  EXPECT_EQ(search_.GetServerPathName(2), "Mine/b/Sea");
  search_.InitServerNameCache();
  EXPECT_EQ(search_.GetServerPathName(2), "Mine/b/Ocean");
}

TEST_F(SearchFolderTest, AreAddedAndDeleted) {
  const std::string long_name(600, 'n');
  EXPECT_TRUE(search_.AddFolder(20, long_name.c_str(), 1, 0));
  EXPECT_EQ(search_.GetFolderName(20), long_name.c_str());
  EXPECT_FALSE(search_.AddFolder(20, "again", 1, 0));
  FOLDERINFO taken;
  taken.dwFolderID = 20;
  EXPECT_FALSE(search_.AddFolder(taken));
  EXPECT_TRUE(search_.AddPhotoInfo(PhotoArray{Photo("a", "a", 1), Photo("b", "b", 2)}));
  EXPECT_TRUE(search_.DeleteFolder(1) && search_.DeleteFolder(CDWordArray{}));
  EXPECT_EQ(Ask("SELECT szGUID FROM SearchPhotoMaster"), std::vector<std::string>{"b"});
  EXPECT_TRUE(search_.DeleteFolder(CDWordArray{2, 3}));
  EXPECT_EQ(Joined(search_.GetTotalNoOfFiles(), search_.GetTotalNoOfFolders()), "0|8");
  EXPECT_TRUE(search_.AddFolder(kGuestRoot, "", kNone, 0) && search_.ResetFolder());
  EXPECT_EQ(Ask("SELECT dwFolderID FROM SearchFolderInfo ORDER BY dwFolderID"),
            Split("-20,-10,0", ","));
}

TEST_F(SearchTest, PhotosAreCopiedAsFarAsTheirColumnsGo) {
  PHOTOINFO photo = Photo("g", "Sea.jpg", 7, 5'000'000'000, 1'000'000'000);
  CopyToFixed(photo.szMD5, "md5");
  photo.SetOPURL("url");
  photo.SetUploadEnd(1);
  photo.SetRating(5);
  EXPECT_TRUE(search_.AddPhotoInfo(photo));
  EXPECT_EQ(Ask("SELECT szGUID, szMD5, szFileName, dxFileSize, szOPURL, dwFolderID, byteUploadEnd, "
                "szRegDate FROM SearchPhotoMaster"),
            std::vector<std::string>{"g|md5|Sea.jpg|5e+09|url|7|1|" +
                                     CUtilityLib::GetTime(1'000'000'000).Str()});
  const auto shown = [&] {
    PHOTOINFO p;
    EXPECT_TRUE(search_.GetPhotoInfo("g", p));
    return Joined(p.szGUID, p.szMD5, p.GetFileName(), p.FileSize, p.GetOPURL(), p.dwFolderID,
                  p.UploadEnd, p.RegDate, p.byteRating);
  };
  EXPECT_EQ(shown(), "g|md5|Sea.jpg|5000000000|url|7|1|1000000000|0");
  EXPECT_FALSE(search_.AddPhotoInfo(Photo("g", "other")));
  EXPECT_EQ(shown(), "g|md5|Sea.jpg|5000000000|url|7|1|1000000000|0");
  EXPECT_TRUE(search_.SetPhotoInfo(Photo("g", "other", 8, 1, 2)));
  EXPECT_EQ(shown(), "g||other|1||8|0|2|0");
  EXPECT_FALSE(search_.SetPhotoInfo(Photo("none", "other")));
}

TEST_F(SearchTest, PhotosAreMovedAndDeleted) {
  EXPECT_TRUE(search_.AddPhotoInfo(PhotoArray{Photo("a", "b", 1), Photo("b", "A", 1),
                                              Photo("c", "it's", 1), Photo("d", "d", 2)}));
  EXPECT_FALSE(search_.AddPhotoInfo(PhotoArray{Photo("e", "e"), Photo("a", "x"), Photo("f", "f")}));
  CStringArray guids{"first"};
  PhotoArray photos, by_guid;
  EXPECT_EQ(
      std::string(Answers{search_.GetPhotoInFolder(1, guids), search_.GetPhotoInFolder(1, photos),
                          Guids(photos), search_.GetTotalNoOfFiles()}),
      "4|3|b,a,c|5");
  std::string told;
  const CRkCallback progress(
      [&](DWORD done, DWORD total, const char*, bool) { told += Joined(done, total) + " "; });
  EXPECT_EQ(search_.GetPhotoInfo(CStringArray{"d", "none", "a"}, by_guid, progress), 2);
  EXPECT_EQ(Joined(Guids(by_guid), told), "d,a|0|3 2|3 ");
  EXPECT_EQ(Joined(search_.GetFolderID("d"), search_.GetFolderID("none")), Joined(2, kNone));
  EXPECT_TRUE(search_.SetFolder("a", 3) && search_.SetFolder(CStringArray{"b", "d"}, 3));
  EXPECT_TRUE(search_.DeletePhoto("b") && search_.DeletePhoto(CString("none")) &&
              search_.DeletePhoto(CStringArray{"e"}) && search_.DeletePhoto(1, "IT'S"));
  EXPECT_EQ(Ask("SELECT szGUID, dwFolderID FROM SearchPhotoMaster ORDER BY szGUID"),
            Split("a|3,d|3", ","));
}

TEST_F(SearchTest, SearchesAppendInOrderUpToTheirLimit) {
  EXPECT_TRUE(search_.AddPhotoInfo(
      PhotoArray{Photo("a", "Big sea", 0, 20, 100), Photo("b", "sea, big", 0, 3, 300),
                 Photo("c", "SEA", 0, 100, 200), Photo("d", "air", 0, 5, 400)}));
  const std::pair<int, const char*> limits[] = {{10, "c,a,d,b"}, {2, "c,a"}, {0, "c"}, {-1, "c"}};
  for (const auto& [max, largest] : limits) {
    PhotoArray photos;
    EXPECT_EQ(search_.SearchBigFile(photos, max), 1);
    EXPECT_EQ(Guids(photos), largest);
  }
  PhotoArray photos;
  EXPECT_EQ(search_.SearchRecentUpload(photos, 2), 1);
  EXPECT_EQ(search_.SearchFileName(" big   sea", photos, 0), 1);
  EXPECT_EQ(search_.SearchFileName("none", photos, 5), 1);
  EXPECT_EQ(Guids(photos), "d,b,a");
  EXPECT_EQ(Joined(Found("sea"), Found("big sea"), Found("")),
            "Big sea,SEA,sea, big|Big sea,sea, big|air,Big sea,SEA,sea, big");
  FolderArray folders;
  EXPECT_TRUE(search_.AddFolder(1, "제주도 여행", 0, 0) && search_.AddFolder(2, "도쿄", 0, 0));
  EXPECT_EQ(search_.SearchFolderName("도", folders, 10), 1);
  EXPECT_EQ(search_.SearchFolderName("여행 제주", folders, 10), 1);
  EXPECT_EQ(Ids(folders), "2,1,1");
}

}  // namespace
}  // namespace vdstomgr
