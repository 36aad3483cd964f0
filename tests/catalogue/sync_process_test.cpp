#include <set>

#include "operation_table.h"

namespace vdstomgr {
namespace {

/// Photos a to d: unmarked, attributes, tags, both; b and c carry tags, of which 3 has no name.
const std::vector<const char*> kMarked = {
    "INSERT INTO PhotoMaster (szGUID, szFileName, byteInfoSync) values ('a', 'na', 0)",
    "INSERT INTO PhotoMaster (szGUID, szFileName, byteInfoSync) values ('b', 'nb', 1)",
    "INSERT INTO PhotoMaster (szGUID, szFileName, byteTagSync) values ('c', 'nc', 1)",
    "INSERT INTO PhotoMaster (szGUID, byteInfoSync, byteTagSync) values ('d', 1, 1)",
    "INSERT INTO TagInfo (dwTagID, szTagName) values (2, 'y')",
    "INSERT INTO TagInfo (dwTagID, szTagName) values (1, 'z')",
    "INSERT INTO PhotoTag (szGUID, dwTagID) values ('b', 2)",
    "INSERT INTO PhotoTag (szGUID, dwTagID) values ('c', 2)",
    "INSERT INTO PhotoTag (szGUID, dwTagID) values ('c', 1)",
    "INSERT INTO PhotoTag (szGUID, dwTagID) values ('c', 3)"};
constexpr const char* kPending = "SELECT * FROM PhotoSyncProcess ORDER BY szGUID";
constexpr const char* kMarks =
    "SELECT szGUID FROM PhotoMaster WHERE byteInfoSync = 1 OR byteTagSync = 1 ORDER BY szGUID";

std::string Pending(OpenCatalogue& catalogue) {
  PhotoSyncArray out;
  std::string text = Joined(catalogue.GetPhotoSyncAllInfo(out, 9));
  std::multiset<std::string> photos;  // in no order
  for (const PHOTOSYNC_INFO& info : out)
    photos.insert(Joined(info.Photo.szGUID, info.Photo.GetFileName(), info.bInfoSync, info.bTagSync,
                         Listed(info.TagIDs)));
  for (const std::string& photo : photos) text += " " + photo;
  return text;
}

std::string Moved(OpenCatalogue& catalogue) {
  catalogue.MovePhotoSyncFlag();
  return Pending(catalogue);
}

std::string FirstTwo(OpenCatalogue& catalogue) {
  PhotoSyncArray out{PHOTOSYNC_INFO()};
  const bool done = catalogue.GetPhotoSyncAllInfo(out, 2);
  return Joined(done, out.GetSize());
}

std::string SentAllButOne(OpenCatalogue& catalogue) {
  PhotoSyncArray sent;
  catalogue.GetPhotoSyncAllInfo(sent, 9);
  sent.RemoveAt(0);
  return Joined(catalogue.DelPhotoSyncAllInfo(sent), catalogue.DelPhotoSyncAllInfo({}));
}

TEST_F(OperationTest, SyncProcess) {
  std::vector<const char*> pending = kMarked;
  pending.insert(pending.end(), {"INSERT INTO PhotoSyncProcess values ('b', 0, 1)",
                                 "INSERT INTO PhotoSyncProcess values ('gone', 1, 1)",
                                 "INSERT INTO PhotoSyncProcess values ('c', 2, 0)",
                                 "INSERT INTO PhotoSyncProcess values ('d', 0, 1)"});
  const auto drop = ANSWER_OF(DelPhotoSyncProcess({"b", "none", "c"}));
  const std::vector<std::string> merged = {"b|1|1", "c|2|1", "d|1|1", "gone|1|1"};
  Check({
      {"marks are moved", kMarked, Moved, "1 b|nb|1|0| c|nc|0|1|1,2 d||1|1|", kMarks, {}},
      {"marks join", pending, Moved, "1 b|nb|1|1|2 c|nc|1|1|1,2 d||1|1|", kPending, merged},
      {"joined marks are cleared", pending, Moved, "1 b|nb|1|1|2 c|nc|1|1|1,2 d||1|1|", kMarks, {}},
      {"tags only where marked", pending, Pending, "1 b|nb|0|1|2 c|nc|1|0| d||0|1|"},
      {"not more than asked for, behind what is there", pending, FirstTwo, "1|3"},
      {"sent, and marked meanwhile", pending, SentAllButOne, "1|1", kMarks, {"b", "c", "d"}},
      {"what was sent goes",
       pending,
       SentAllButOne,
       "1|1",
       "SELECT COUNT(*) FROM PhotoSyncProcess",
       {"2"}},
      {"dropping clears marks", pending, drop, "1", kMarks, {"d"}},
      {"dropping takes out", pending, drop, "1", kPending, {"d|0|1", "gone|1|1"}},
  });
}

}  // namespace
}  // namespace vdstomgr
