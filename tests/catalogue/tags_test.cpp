#include "operation_table.h"

namespace vdstomgr {
namespace {

using Rows = std::vector<const char*>;

const Rows kSeaAndHill = {"INSERT INTO TagInfo (dwTagID, szTagName) values (2, 'Sea')",
                          "INSERT INTO TagInfo (dwTagID, szTagName) values (7, 'it''s')"};

/// a: Sea, it's, Air and a tag that is gone; b: Sea, it's; c: Sea.
const Rows kTagged = {"INSERT INTO TagInfo (dwTagID, szTagName) values (1, 'Sea')",
                      "INSERT INTO TagInfo (dwTagID, szTagName) values (2, 'it''s')",
                      "INSERT INTO TagInfo (dwTagID, szTagName) values (3, 'Air')",
                      "INSERT INTO TagInfo (dwTagID, szTagName) values (4, 'unused')",
                      "INSERT INTO PhotoMaster (szGUID, byteTagSync) values ('a', 0)",
                      "INSERT INTO PhotoMaster (szGUID, byteTagSync) values ('b', 0)",
                      "INSERT INTO PhotoMaster (szGUID, byteTagSync) values ('c', 0)",
                      "INSERT INTO PhotoTag (szGUID, dwTagID) values ('a', 1)",
                      "INSERT INTO PhotoTag (szGUID, dwTagID) values ('b', 1)",
                      "INSERT INTO PhotoTag (szGUID, dwTagID) values ('c', 1)",
                      "INSERT INTO PhotoTag (szGUID, dwTagID) values ('a', 2)",
                      "INSERT INTO PhotoTag (szGUID, dwTagID) values ('b', 2)",
                      "INSERT INTO PhotoTag (szGUID, dwTagID) values ('a', 3)",
                      "INSERT INTO PhotoTag (szGUID, dwTagID) values ('a', 9)"};

const char* const kTags = "SELECT * FROM TagInfo ORDER BY dwTagID";
/// What the photos carry of tag 2, and who is marked.
const char* const kLinksOf2 = "SELECT szGUID FROM PhotoTag WHERE dwTagID = 2 ORDER BY szGUID";
const char* const kMarked = "SELECT szGUID FROM PhotoMaster WHERE byteTagSync = 1 ORDER BY szGUID";

TEST_F(OperationTest, Tags) {
  Check({
      {"a tag is known by its name, case disregarded", kSeaAndHill,
       [](OpenCatalogue& catalogue) {
         return Joined(catalogue.IsTag("IT'S"), catalogue.IsTag("it"), catalogue.IsTag(7u),
                       catalogue.IsTag(8u), catalogue.GetTagID("sea"), catalogue.GetTagID("none"),
                       catalogue.GetTagName(2), catalogue.GetTagName(3));
       },
       "1|0|1|0|2|4294967295|Sea|"},
      {"the first id", {}, ANSWER_OF(GetNewTagID()), "1"},
      {"ids below the highest stay unused", kSeaAndHill, ANSWER_OF(GetNewTagID()), "8"},
      {"neither a taken name nor a taken id is added, nor a name too long",
       kSeaAndHill,
       [](OpenCatalogue& catalogue) {
         return InOrder{catalogue.AddTagInfo("sea", 5), catalogue.AddTagInfo("x", 7),
                        catalogue.AddTagInfo(std::string(65, 'x').c_str(), 8),
                        catalogue.AddTagInfo("o'x", 9)};
       },
       "0|0|0|1",
       kTags,
       {"2|Sea", "7|it's", "9|o'x"}},
      {"a name is changed to a free one",
       kSeaAndHill,
       [](OpenCatalogue& catalogue) {
         return InOrder{catalogue.ChangeTagName(2, "it's"), catalogue.ChangeTagName(2, "SEA"),
                        catalogue.ChangeTagName(3, "new"), catalogue.ChangeTagName(7, "new")};
       },
       "0|0|0|1",
       kTags,
       {"2|Sea", "7|new"}},
      {"lists are by name and count photos", kTagged,
       [](OpenCatalogue& catalogue) {
         TagArray tags;
         TagCountArray counts;
         std::string all = Joined(catalogue.GetTagList(tags), catalogue.GetTagListAndCount(counts));
         for (const TAGINFO& tag : tags) all += " " + Joined(tag.dwTagID, tag.szTagName);
         for (const TAGINFOCOUNT& tag : counts)
           all += " " + Joined(tag.dwTagID, tag.szTagName, tag.nCount);
         return all;
       },
       "4|3 3|Air 2|it's 1|Sea 4|unused 3|Air|1 2|it's|2 1|Sea|3"},
      {"names of ids, in their order", kTagged, ANSWER_OF(GetTagNamesByTagIDs({1, 8, 3, 1})),
       "Sea,Air,Sea"},
  });
}

TEST_F(OperationTest, TagsOfPhotos) {
  Check({
      {"a tag is added where it is missing, and all are marked",
       kTagged,
       ANSWER_OF(AddTag({"c", "a", "none"}, 2, true)),
       "1",
       kLinksOf2,
       {"a", "b", "c", "none"}},
      {"those that carried it too",
       kTagged,
       ANSWER_OF(AddTag({"c", "a"}, 2, true)),
       "1",
       kMarked,
       {"a", "c"}},
      {"unless it is not to be sent", kTagged, ANSWER_OF(AddTag("c", 2, false)), "1", kMarked, {}},
      {"a list goes on behind a GUID that cannot be written",
       kTagged,
       ANSWER_OF(AddTag({"it's", "c"}, 2, false)),
       "1",
       kLinksOf2,
       {"a", "b", "c"}},
      {"a tag is taken off", kTagged, ANSWER_OF(RemoveTag({"a", "c"}, 2)), "1", kLinksOf2, {"b"}},
      {"which marks also who did not carry it",
       kTagged,
       ANSWER_OF(RemoveTag("c", 2)),
       "1",
       kMarked,
       {"c"}},
      {"all tags of photos",
       kTagged,
       [](OpenCatalogue& catalogue) {
         catalogue.RemoveAllTagByGUID("b", true);
         catalogue.RemoveAllTagByGUID(CStringArray{"a", "none"}, false);
         return Joined(catalogue.IsTagged("a", 1), catalogue.IsTagged("b", 1),
                       catalogue.IsTagged("c", 1), catalogue.IsTagged("c", 2));
       },
       "0|0|1|0",
       kMarked,
       {"b"}},
      {"a tag and its links go one at a time",
       kTagged,
       [](OpenCatalogue& catalogue) {
         catalogue.RemoveTagInfo(2);
         const bool link = catalogue.IsTagged("a", 2);
         catalogue.RemoveAllTagByTagID(2);
         return InOrder{catalogue.IsTag(2u), link, catalogue.IsTagged("a", 2)};
       },
       "0|1|0",
       kMarked,
       {}},
      {"tags and photos are appended", kTagged,
       [](OpenCatalogue& catalogue) {
         TagArray tags(std::vector<TAGINFO>(1));
         CStringArray photos{"first"};
         return InOrder{catalogue.GetTagLists("b", tags), tags[1].szTagName,
                        catalogue.GetPhotoListWithTag(1, photos), Listed(photos)};
       },
       "3|Sea|4|first,a,b,c"},
      {"what all photos carry and what some do", kTagged,
       [](OpenCatalogue& catalogue) {
         CDWordArray common{77}, partial;
         return InOrder{catalogue.GetTagLists({"a", "b"}, common, partial), Listed(common),
                        Listed(partial), catalogue.GetTagLists(CStringArray(), common, partial)};
       },
       "5|77,1,2|3,9|0"},
      {"names by name, but one", kTagged,
       [](OpenCatalogue& catalogue) {
         return Joined(catalogue.GetTagNames("a", 2), catalogue.GetTagNames({"a", "b"}, 0),
                       catalogue.GetTagNames({"a", "b", "c"}, 9),
                       catalogue.GetTagNames({"a", "b"}, 1),
                       catalogue.GetTagNames(CStringArray(), 0));
       },
       "Air,Sea|it's,Sea|Sea|it's|"},
  });
  EXPECT_EQ(TakeReports().size(), 1u) << "of the GUID with a quote";
}

}  // namespace
}  // namespace vdstomgr
