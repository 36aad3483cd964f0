#include <thread>

#include "operation_table.h"
#include "vdstomgr/session/database_session.h"

namespace vdstomgr {
namespace {

/// A row with another value in every column that an item shows.
constexpr const char* kFull =
    "INSERT INTO PhotoMaster (szGUID, szFileName, bytePublic, byteFlag, byteComment, dxFileSize, "
    "wWidth, wHeight, dwFolderID, byteRotate, szShootDate, szRegDate, wExifISO) values "
    "('full', 'n', 3, 5, 4, '18446744073709551615', 65535, 6, 7, 8, '2001-02-03 04:05:06', "
    "'2002-03-04 05:06:07', 9)";
#define PHOTO(guid, flag, public_state)                                              \
  "INSERT INTO PhotoMaster (szGUID, byteFlag, bytePublic) values ('" guid "', " flag \
  ", " public_state ")"
#define LINK(guid, id) "INSERT INTO PhotoTag (szGUID, dwTagID) values ('" guid "', " #id ")"

/// Tag 3: full, a, b and a photo that is gone; tag 5: a, b; tag 9: b.
const std::vector<const char*> kTagged = {
    kFull,        PHOTO("a", "1", "2"), PHOTO("b", "null", "3"), LINK("full", 3),
    LINK("a", 3), LINK("b", 3),         LINK("gone", 3),         LINK("a", 5),
    LINK("b", 5), LINK("b", 9)};

std::string Shown(const GA_ITEMINFO& i) {
  const auto time = [](std::int32_t seconds) { return CUtilityLib::GetTime(seconds); };
  return Joined(i.Type, i.GUID, i.GetFileName(), i.Public, i.Flag, i.Comment, i.FileSize, i.Width,
                i.Height, i.GA_TBITEMINFO::dwFolderID, i.dwFolderID, i.Rotate, time(i.ShootDate),
                time(i.ShootDay), time(i.RegDate), time(i.RegDay), i.ExifISO);
}

/// The answer and the GUIDs in each group, in order: "2 3:a,b 5:a".
std::string Groups(OpenCatalogue& c, const CDWordArray& tags, bool by_tag, BYTE flags, BYTE state) {
  ItemGroupArray groups;
  std::string all = Answers{c.Lock_FilteredTagItemList(groups, tags, by_tag, flags, state)};
  for (const GA_ITEMINFO_GROUP& group : groups) {
    std::vector<std::string> guids;
    for (const GA_ITEMINFO* item : *group.pItemList) guids.emplace_back(item->GUID);
    std::ranges::sort(guids);
    all += " " + Joined(group.dwTagID) + ":" + Listed(guids);
  }
  c.Free_FilteredTagItemList(groups);
  return all + (groups.IsEmpty() ? "" : " not freed");
}

std::string BothWays(OpenCatalogue& c, const CDWordArray& tags, BYTE flags, BYTE state) {
  return Groups(c, tags, true, flags, state) + "; " + Groups(c, tags, false, flags, state);
}

std::string FirstItem(OpenCatalogue& c, DWORD tag, bool by_tag) {
  ItemGroupArray groups;
  c.Lock_FilteredTagItemList(groups, {tag}, by_tag, 4, 255);
  const std::string shown = Shown(*groups[0].pItemList->GetAt(0));
  c.Free_FilteredTagItemList(groups);
  return shown;
}

/// Answers -1 with the groups before the failure; a later call adds to them, and all are freed.
std::string AfterAFailure(OpenCatalogue& c) {
  ItemGroupArray groups;
  c.Lock_FilteredTagItemList(groups, {9}, true, 255, 255);
  c.m_db->Guarded([&] { c.m_db->Run("DROP TABLE IX_PT1"); });
  const int failed = c.Lock_FilteredTagItemList(groups, {3, 5}, false, 255, 255);
  const int appended = c.Lock_FilteredTagItemList(groups, {5}, true, 255, 255);
  c.m_db->Guarded([&] { c.m_db->Run("Create Table IX_PT1  (szGUID CHAR(36) PRIMARY KEY)"); });
  for (int call = 0; call < 3; ++call) c.Free_FilteredTagItemList(groups);
  return Joined(failed, appended);
}

/// Has somebody else to wait for the list? Asked by a thread that takes it and gives it back.
bool IsLent(OpenCatalogue& c) {
  std::atomic<bool> done = false;
  std::thread other([&] {
    ItemGroupArray groups;
    c.Free_FilteredTagItemList(groups);  // what it does not hold stays
    c.Lock_FilteredTagItemList(groups, {}, true, 255, 255);
    done = true;
    c.Free_FilteredTagItemList(groups);
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  const bool waits = !done;
  ItemGroupArray groups;
  c.Free_FilteredTagItemList(groups);
  other.join();
  return waits;
}

std::string LocksLent(OpenCatalogue& c) {
  ItemGroupArray groups;
  const bool before = IsLent(c);
  c.Lock_FilteredTagItemList(groups, {}, true, 255, 255);
  return Answers{before, IsLent(c), IsLent(c)};
}

TEST_F(OperationTest, PhotosByTag) {
  const std::string full =
      "0|full|n|3|5|4|18446744073709551615|65535|6|0|7|8|2001-02-03 04:05:06|2001-02-03 00:00:00|"
      "2002-03-04 05:06:07|2002-03-04 00:00:00|9";
  Check({
      {"every column fills its field, both ways", kTagged,
       ANSWERS(FirstItem(c, 3, true), FirstItem(c, 3, false)), full + "|" + full},
      {"groups by id, photos in each; those of all tags under the first", kTagged,
       ANSWERS(BothWays(c, {5, 3}, 255, 255), BothWays(c, {3}, 255, 255)),
       "2 3:a,b,full 5:a,b; 1 5:a,b|1 3:a,b,full; 1 3:a,b,full"},
      {"three tags are on one photo; none are on any",
       kTagged,
       ANSWERS(Groups(c, {3, 9, 5}, false, 255, 255), BothWays(c, {}, 255, 255),
               BothWays(c, {4}, 255, 255)),
       "1 3:b|0; 0|0; 0",
       "SELECT * FROM IX_PT",
       {}},
      {"all bits of both masks, and no group without photos", kTagged,
       ANSWERS(BothWays(c, {3, 5, 9}, 1, 255), BothWays(c, {5, 3}, 1, 2),
               BothWays(c, {5, 3}, 255, 1), BothWays(c, {5, 3}, 8, 0)),
       "2 3:a,full 5:a; 0|2 3:a,full 5:a; 1 5:a|2 3:b,full 5:b; 1 5:b|0; 0"},
      {"an empty item has the placeholder's size",
       {PHOTO("a", "4", "null"), LINK("a", 1)},
       [](OpenCatalogue& c) { return FirstItem(c, 1, true).substr(0, 33); },
       "0|a||0|4|0|0|400|400|0|4294967295"},
      {"what is there stays, also after a failure", kTagged, AfterAFailure, "-1|2"},
      {"the list is lent until it is given back", {}, LocksLent, "0|1|0"},
  });
  EXPECT_EQ(TakeReports(), Reports{3078});
}

#define ICON(guid, date, url)                                                                      \
  "INSERT INTO PhotoMaster (szGUID, dwFolderID, szRegDate, szShootDate, szLTBURL, wWidth) values " \
  "("                                                                                              \
  "'" guid "', 1, " date ", " url ", 30)"
#define FOLDER(id, icon) \
  "INSERT INTO FolderInfo (dwFolderID, dwParentID, szIconGUID) values (" #id ", 0, '" icon "')"

TEST_F(OperationTest, FolderIcons) {
  const std::vector<const char*> photos = {
      ICON("old", "'2001-01-01 00:00:00'", "'2009-01-01 00:00:00', 'u'"),
      ICON("first", "'2002-01-01 00:00:00'", "'2001-01-01 00:00:00', 'u'"),
      ICON("last", "'2002-01-01 00:00:00'", "'2001-01-01 00:00:01', 'u'"),
      ICON("bare", "'2003-01-01 00:00:00'", "'2003-01-01 00:00:00', ''"),
      ICON("barer", "'2003-01-01 00:00:00'", "'2003-01-01 00:00:00', null"),
      FOLDER(1, "none"),
      FOLDER(2, "BARE"),
      FOLDER(3, "none")};
  const auto icon = [](auto fill) {
    return [fill](OpenCatalogue& c) {
      std::string icons;
      for (const DWORD folder : {1u, 2u, 3u, 4u}) {
        GA_TBITEMINFO item;
        item.SetGUID("before"), item.SetSeqNo(5);
        const bool found = (c.*fill)(folder, item);
        icons += Joined(found, item.Type, item.GUID, item.Width, item.SeqNo) + " ";
      }
      return icons;
    };
  };
  Check({
      {"the named photo, else the newest with a thumbnail", photos,
       icon(&OpenCatalogue::GetFolderIcon),
       "1|0|last|30|5 1|0|bare|400|5 0|255|before|0|5 0|255|before|0|5 "},
      {"the newest, whatever is named", photos, icon(&OpenCatalogue::GetFolderIconFromMaster),
       "1|0|last|30|5 0|255|before|0|5 0|255|before|0|5 0|255|before|0|5 "},
  });
}

}  // namespace
}  // namespace vdstomgr
