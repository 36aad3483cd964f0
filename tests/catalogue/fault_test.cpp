#include <functional>

#include "catalogue_test.h"
#include "tests/dao/faulty_disk.h"
#include "tests/dao/faulty_memory.h"
#include "tests/dao/integrity.h"

namespace vdstomgr {
namespace {

/// An operation of each subject, on a catalogue with two of everything.
struct Operation {
  const char* name;
  std::function<bool(OpenCatalogue&)> run;
};

const CStringArray kBoth{"00000000-0000-0000-0000-00000000000a",
                         "00000000-0000-0000-0000-00000000000b"};

PHOTOINFO LongPhoto(const char* guid) {
  PHOTOINFO photo;
  photo.SetGUID(guid);
  photo.SetFileName(std::string(300, 'n').c_str());
  return photo;
}

// What the operations are given; made before anything fails.
const CDWordArray kFolders{1, 2};
const CDWordArray kTags{1, 2};
const PhotoArray kNew{LongPhoto("n"), LongPhoto("m")};
const std::string kLongName(300, 'f');

/// Answers the number of groups; a failure in the middle of one leaves nothing behind.
int ListsOfBothTags(OpenCatalogue& c, bool by_tag) {
  ItemGroupArray groups;
  const int answer = c.Lock_FilteredTagItemList(groups, kTags, by_tag, 255, 255);
  c.Free_FilteredTagItemList(groups);
  return answer;
}

const Operation kOperations[] = {
    {"versions", [](auto& c) { return c.SetVersionInfo("CameraLens", "2001-01-01 00:00:00"); }},
    {"rename", [](auto& c) { return c.RenameFolder(1, kLongName.c_str(), "desc"); }},
    {"date", [](auto& c) { return c.UpdateFolderModifiedDate(1, 86400); }},
    {"sub-folders",
     [](auto& c) {
       CDWordArray ids;
       return c.GetSubFolder(0, ids, true) == 2;
     }},
    {"shared", [](auto& c) { return c.SetSharedOption(kFolders, 1); }},
    {"active", [](auto& c) { return c.AddActiveFolder(kFolders); }},
    {"add", [](auto& c) { return c.AddPhotoInfo(kNew); }},
    {"read",
     [](auto& c) {
       PhotoArray photos;
       return c.GetPhotoInfo(kBoth, photos, nullptr) == 2;
     }},
    {"title", [](auto& c) { return c.SetTitle(kBoth[0], "a title that is no short text"); }},
    {"shoot date", [](auto& c) { return c.SetShootDate(kBoth, 86400); }},
    {"flag", [](auto& c) { return c.SetFlag(kBoth, 2, true); }},
    {"tag", [](auto& c) { return c.AddTag(kBoth, 2, true); }},
    {"tag names", [](auto& c) { return c.GetTagNames(kBoth, 9) == "a long name of a tag"; }},
    {"by tag", [](auto& c) { return ListsOfBothTags(c, true) == 2; }},
    {"by all tags", [](auto& c) { return ListsOfBothTags(c, false) == 1; }},
    {"icon",
     [](auto& c) {
       GA_TBITEMINFO item;
       return c.GetFolderIcon(1, item);
     }},
    {"room", [](auto& c) { return c.DelRoomInfo(1); }},
    {"album", [](auto& c) { return c.GetAlbumPath(1, 2) == "a long name of a room/one/two"; }},
    {"trash",
     [](auto& c) {
       TRASHPHOTOINFO info;
       info.SetGUID(kBoth[0]);
       return c.AddTrashPhotoInfo(info, true);
     }},
    {"sync",
     [](auto& c) {
       c.MovePhotoSyncFlag();
       PhotoSyncArray pending;
       return c.GetPhotoSyncAllInfo(pending, 10) && pending.GetSize() == 2 &&
              c.DelPhotoSyncAllInfo(pending);
     }},
    {"paths", [](auto& c) { return c.AddOP(kBoth[0], "/a/path/that/is/no/short/text"); }},
    {"notify",
     [](auto& c) {
       NotifyArray marks;
       c.AddNotifyFolder_List(kFolders, 4);
       return c.GetNotifyFolder_List(marks) && marks.GetSize() == 2;
     }},
    {"delete", [](auto& c) { return c.DeletePhotosAndRelations(kBoth, nullptr); }},
    {"upload",
     [](auto& c) {
       UPLOADLIST row;
       row.SetFileName(kLongName.c_str());
       for (int i = 0; i < 2; ++i) c.AddUploadList(row);
       CDWordArray second{1};
       return c.SetUploadReorder_TOP(second) == 0 && c.UpdateSentBytesInUploadInfo("", ~0ull) &&
              c.GetNextUploadList(row) && c.DelUploadList("");
     }},
    {"reset", [](auto& c) { return c.ResetAllNotify(); }},
};

class CatalogueFaultTest : public CatalogueTest {
 protected:
  void SetUp() override {
    for (const char* statement :
         {"INSERT INTO FolderInfo (dwFolderID, dwParentID) values (1, 0)",
          "INSERT INTO FolderInfo (dwFolderID, dwParentID) values (2, 1)",
          "INSERT INTO TagInfo (dwTagID, szTagName) values (1, 'a long name of a tag')",
          "INSERT INTO RoomInfo (dwRoomID, szRoomName) values (1, 'a long name of a room')",
          "INSERT INTO AlbumInfo (dwRoomID, dwAlbumID, dwParentID, szAlbumName) "
          "values (1, 1, 0, 'one')",
          "INSERT INTO AlbumInfo (dwRoomID, dwAlbumID, dwParentID, szAlbumName) "
          "values (1, 2, 1, 'two')"})
      RunBeside(statement);
    for (const CString& guid : kBoth) {
      PHOTOINFO photo = Photo(guid.Str(), 1, "a long name of a photo.jpg");
      photo.SetLTBURL("store:a long location of a thumbnail");
      ASSERT_TRUE(catalogue_.AddPhotoInfo(photo, false));
      for (const DWORD tag : kTags) ASSERT_TRUE(catalogue_.AddTag(guid, tag, true));
    }
    ASSERT_TRUE(catalogue_.CloseDB());
    std::filesystem::copy_file(file_, Path("template.db"));
  }

  /// Runs every operation again and again with a later call failing each time, until none fails;
  /// beyond the first sixteen some are passed over.
  template <class Faults>
  void Sweep(Faults& faults, const std::function<void(int)>& fail_at) {
    for (const Operation& operation : kOperations) {
      SCOPED_TRACE(operation.name);
      bool failed = true;
      for (int call = 1; failed && !HasFailure(); call += 1 + call / 16) {
        SCOPED_TRACE(call);
        std::filesystem::remove(file_);  // the copying of some compilers for Windows replaces none
        std::filesystem::copy_file(Path("template.db"), file_);
        OpenCatalogue catalogue;
        ASSERT_TRUE(catalogue.OpenDB(file_.c_str(), ""));
        fail_at(call);
        const bool done = operation.run(catalogue);
        failed = faults.HasFailed();
        faults.Heal();
        EXPECT_TRUE(done || failed);
        TakeReports();
        EXPECT_TRUE(catalogue.FolderExistsInDB(1) && catalogue.SetVersionInfo("CameraLens", "x"));
        EXPECT_TRUE(catalogue.CloseDB());
        EXPECT_EQ(TakeReports(), Reports());
        CRkDaoDatabase database;
        database.Open(file_.c_str());
        ExpectSound(database);
      }
    }
  }
};

TEST_F(CatalogueFaultTest, AFailingFileCallLeavesFileAndObjectUsable) {
  using Fault = FaultyDisk::Fault;
  FaultyDisk disk;
  for (const Fault fault : {Fault::Once, Fault::FromThenOn})
    Sweep(disk, [&](int call) { disk.FailAt(call, fault); });
  EXPECT_EQ(disk.OpenFiles(), 0);
}

TEST_F(CatalogueFaultTest, AFailingAllocationLeavesFileAndObjectUsable) {
  FaultyMemory memory;
  const FaultyDisk disk;  // which does not wait for the device
  Sweep(memory, [&](int call) { memory.FailAt(call); });
}

}  // namespace
}  // namespace vdstomgr
