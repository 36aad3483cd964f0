#include "operation_table.h"

namespace vdstomgr {
namespace {

#define TAG(id, name) "INSERT INTO TagInfo (dwTagID, szTagName) values (" #id ", '" name "')"
#define PHOTO(guid) "INSERT INTO PhotoMaster (szGUID, byteTagSync) values ('" guid "', 0)"
#define LINK(guid, id) "INSERT INTO PhotoTag (szGUID, dwTagID) values ('" guid "', " #id ")"

/// a: Sea, it's, Air and a tag that is gone; b: Sea, it's; c: Sea.
const std::vector<const char*> kTagged = {
    TAG(1, "Sea"), TAG(2, "it''s"), TAG(3, "Air"), TAG(4, "unused"), PHOTO("a"),
    PHOTO("b"),    PHOTO("c"),      LINK("a", 1),  LINK("b", 1),     LINK("c", 1),
    LINK("a", 2),  LINK("b", 2),    LINK("a", 3),  LINK("a", 9)};

const char* const kWith2 = "SELECT szGUID FROM PhotoTag WHERE dwTagID = 2 ORDER BY szGUID";

std::string NamesOfAll(OpenCatalogue& c) {
  TagArray tags;
  TagCountArray counts;
  std::string all = Answers{c.GetTagList(tags), c.GetTagListAndCount(counts)};
  for (const TAGINFO& tag : tags) all += " " + Joined(tag.dwTagID, tag.szTagName);
  for (const TAGINFOCOUNT& tag : counts)
    all += " " + Joined(tag.dwTagID, tag.szTagName, tag.nCount);
  return all;
}

std::string ListsOfPhotos(OpenCatalogue& c) {
  TagArray tags(std::vector<TAGINFO>(1));
  CStringArray photos{"first"};
  CDWordArray common{77}, partial;
  return Answers{c.GetTagLists("b", tags),
                 tags[1].szTagName,
                 c.GetPhotoListWithTag(1, photos),
                 Listed(photos),
                 c.GetTagLists({"a", "b"}, common, partial),
                 Listed(common),
                 Listed(partial)};
}

TEST_F(OperationTest, Tags) {
  const std::string too_long(65, 'x');
  Check({
      {"the first id", {}, ANSWER_OF(GetNewTagID()), "1"},
      {"a name that is too long", kTagged,
       [&](OpenCatalogue& c) {
         return Answers{c.AddTagInfo(too_long.c_str(), 7), c.GetNewTagID()};
       },
       "0|5"},
      {"lists are by name", kTagged, NamesOfAll,
       "4|3 3|Air 2|it's 1|Sea 4|unused 3|Air|1 2|it's|2 1|Sea|3"},
      {"tags are known by name, case disregarded, and by id", kTagged,
       ANSWERS(c.IsTag("IT'S"), c.IsTag("it"), c.IsTag(3u), c.IsTag(8u), c.GetTagID("sea"),
               c.GetTagID("none"), c.GetTagName(2), c.GetTagName(8),
               c.GetTagNamesByTagIDs({1, 8, 3, 1})),
       "1|0|1|0|1|4294967295|it's||Sea,Air,Sea"},
  });
}

TEST_F(OperationTest, TagsOfPhotos) {
  Check({
      {"a tag is added where it is missing, behind a GUID that cannot be written too", kTagged,
       ANSWERS(c.AddTag({"it's", "c", "a", "none"}, 2, false)), "1", kWith2,
       Split("a / b / c / none")},
      {"lists are appended to, and tell what all photos carry from what some do", kTagged,
       ListsOfPhotos, "3|Sea|4|first,a,b,c|5|77,1,2|3,9"},
      {"names by name, but one", kTagged,
       ANSWERS(c.GetTagNames("a", 2), c.GetTagNames({"a", "b"}, 0),
               c.GetTagNames({"a", "b", "c"}, 9), c.GetTagNames({"a", "b"}, 1)),
       "Air,Sea|it's,Sea|Sea|it's"},
  });
  EXPECT_EQ(TakeReports().size(), 1u) << "of the GUID with a quote";
}

}  // namespace
}  // namespace vdstomgr
