#include "bench/catalogue_case.h"
#include "bench/catalogue_files.h"
#include "bench/catalogue_records.h"
#include "bench/peer_database.h"

// Operations on lists of photos: one commit each, on both sides.
namespace bench {
namespace {

/// The photos of a hundred folders: what a person selects and changes at once.
constexpr int kList = 10'000;

/// That many photos, the one of that number among them.
CStringArray ListAround(std::uint64_t number) {
  CStringArray guids;
  const std::uint64_t first = number / kList * kList;
  for (std::uint64_t i = 0; i < kList; ++i) guids.Add(GuidOf(first + i).c_str());
  return guids;
}

/// The photos that AddDoomed adds.
CStringArray DoomedList(std::uint64_t) {
  CStringArray guids;
  for (std::uint64_t i = 0; i < kList; ++i) guids.Add(("9" + GuidOf(i).substr(1)).c_str());
  return guids;
}

/// Adds copies of the first photos, with their tags, to be deleted.
void AddDoomed(const std::string& path, int) {
  static const std::string first = "rowid <= " + std::to_string(kList);
  RunBeside(path,
            "BEGIN; CREATE TEMP TABLE Doomed AS SELECT * FROM PhotoMaster WHERE " + first +
                "; INSERT INTO PhotoTag SELECT '9' || substr(szGUID, 2), dwTagID FROM PhotoTag "
                "WHERE szGUID IN (SELECT szGUID FROM Doomed); "
                "UPDATE Doomed SET szGUID = '9' || substr(szGUID, 2); "
                "INSERT INTO PhotoMaster SELECT * FROM Doomed; COMMIT");
}

/// Statements by hand, run one after another for each photo of a list, in one commit: ?1 is the
/// photo's GUID, ?2 a value for all of them.
class PeerList {
 public:
  PeerList(const std::string& path, const std::vector<std::string>& statements) : db_(path) {
    for (const std::string& sql : statements)
      steps_.push_back({db_.Prepare(sql), sql.find("?2") != std::string::npos});
  }

  template <class Bind>
  bool Run(const CStringArray& guids, Bind bind_value) {
    db_.Begin();
    bool done = true;
    for (const CString& guid : guids) {
      for (const Step& step : steps_) {
        Binder binder(step.statement);
        binder.Text(guid);
        if (step.has_value) bind_value(binder);
        done = done && PeerDatabase::Run(step.statement);
      }
    }
    db_.Commit();
    return done;
  }

 private:
  struct Step {
    PeerStatement statement;
    bool has_value;
  };

  PeerDatabase db_;
  std::vector<Step> steps_;
};

using List = CStringArray (*)(std::uint64_t number);
using OurList = bool (*)(OurCatalogue& ours, const CStringArray& guids, int value);
using BindValue = void (*)(Binder& binder, int value);

void AsNumber(Binder& binder, int value) {
  binder.Number(value);
}

std::string TitleOf(int value) {
  return "제주도 여행 " + std::to_string(value);
}

/// `value` is a fresh one for each run.
Case ListCase(const std::string& name, OurList operation, std::vector<std::string> by_hand,
              BindValue bind = AsNumber, List list = ListAround) {
  const Opener ours = [=](const std::string& path) -> Operation {
    return [=, side = std::make_shared<OurCatalogue>(path)](std::uint64_t number) {
      return operation(*side, list(number), Fresh());
    };
  };
  const Opener peer = [=](const std::string& path) -> Operation {
    return [=, side = std::make_shared<PeerList>(path, by_hand)](std::uint64_t number) {
      const int value = Fresh();
      return side->Run(list(number), [=](Binder& binder) { bind(binder, value); });
    };
  };
  return {.name = name, .ours = ours, .peer = peer, .iterations = 3, .items = kList};
}

std::vector<Case> Setters() {
  return {
      ListCase("SetRelativeRotate, list",
               [](OurCatalogue& ours, const CStringArray& guids, int) {
                 return ours.SetRelativeRotate(guids, 1);
               },
               {"UPDATE PhotoMaster SET byteRotate = (byteRotate + 1) % 4, byteInfoSync = 1 "
                "WHERE szGUID = ?1"}),
      ListCase(
          "SetTitle, list",
          [](OurCatalogue& ours, const CStringArray& guids, int value) {
            return ours.SetTitle(guids, TitleOf(value).c_str());
          },
          {"UPDATE PhotoMaster SET szTitle = ?2, byteInfoSync = 1 WHERE szGUID = ?1"},
          [](Binder& binder, int value) { binder.Text(TitleOf(value).c_str()); }),
      ListCase("SetFolder, list",
               [](OurCatalogue& ours, const CStringArray& guids, int value) {
                 return ours.SetFolder(guids, DWORD(value));
               },
               {"UPDATE PhotoMaster SET dwFolderID = ?2 WHERE szGUID = ?1"}),
      ListCase(
          "SetFlag, list",
          [](OurCatalogue& ours, const CStringArray& guids, int value) {
            return ours.SetFlag(guids, 2, value % 2 != 0);
          },
          {"UPDATE PhotoMaster SET byteFlag = byteFlag & ~4 | ?2, byteInfoSync = 1 "
           "WHERE szGUID = ?1 AND byteFlag & 4 <> ?2"},
          [](Binder& binder, int value) { binder.Number(value % 2 * 4); }),
  };
}

std::vector<Case> Relations() {
  Case deletion = ListCase(
      "DeletePhotosAndRelations",
      [](OurCatalogue& ours, const CStringArray& guids, int) {
        return ours.DeletePhotosAndRelations(guids, nullptr);
      },
      {"DELETE FROM PhotoTag WHERE szGUID = ?1", "DELETE FROM PhotoAlbum WHERE szGUID = ?1",
       "DELETE FROM PhotoRP WHERE szGUID = ?1", "DELETE FROM PhotoOP WHERE szGUID = ?1",
       "DELETE FROM PhotoMaster WHERE szGUID = ?1"},
      AsNumber, DoomedList);
  deletion.prepare = AddDoomed;
  deletion.note = "both sides mark a photo's tags changed before they delete the photo";
  return {ListCase(
              "AddTag, list",
              [](OurCatalogue& ours, const CStringArray& guids, int value) {
                return ours.AddTag(guids, 1000 + DWORD(value), true);
              },
              {"INSERT OR IGNORE INTO PhotoTag (szGUID, dwTagID) VALUES (?1, ?2)",
               "UPDATE PhotoMaster SET byteTagSync = 1 WHERE szGUID = ?1"},
              [](Binder& binder, int value) { binder.Number(1000 + value); }),
          deletion};
}

}  // namespace

std::vector<Case> ListCases() {
  std::vector<Case> cases = Setters();
  for (Case& test : Relations()) cases.push_back(std::move(test));
  return cases;
}

}  // namespace bench
