#include <memory>

#include "bench/catalogue_case.h"
#include "bench/catalogue_records.h"
#include "bench/peer_database.h"
#include "vdstomgr/records/gallery_items.h"

namespace bench {
namespace {

constexpr int kPhotosPerTag = 1000;
constexpr char kWorkTables[] = "both sides leave the photos with all tags in the work tables";

/// In place of the catalogue's links as many as photos, two on every second photo: the photos of a
/// tag from 1 to `tags` carry a second one, which has twice as many.
int AddLinks(const std::string& path) {
  PeerDatabase db(path);
  Require(PeerDatabase::Run(db.Prepare("DELETE FROM PhotoTag")), "other links");
  const PeerStatement count = db.Prepare("SELECT MAX(rowid) FROM PhotoMaster");
  int photos = 0;
  Require(Next(count), "photos");
  Reader(count.get()).Number(photos);
  Reset(count);
  const std::string tags = std::to_string(photos / 2 / kPhotosPerTag);
  for (const std::string& tag :
       {"1 + rowid / 2 % " + tags, tags + " + 1 + rowid / 2 % " + tags + " / 2"})
    Require(PeerDatabase::Run(db.Prepare("INSERT INTO PhotoTag (szGUID, dwTagID) SELECT szGUID, " +
                                         tag + " FROM PhotoMaster WHERE rowid % 2 = 0")),
            "links");
  return photos / 2 / kPhotosPerTag;
}

/// A tag and the second one of its photos.
struct TagPairs {
  explicit TagPairs(const std::string& path) : count(AddLinks(path)) {}

  CDWordArray Pair(std::uint64_t number) const {
    const auto tag = static_cast<DWORD>(number % std::uint64_t(count));
    return {1 + tag, DWORD(count) + 1 + tag / 2};
  }

  int count;
};

struct OurTags : TagPairs, OurCatalogue {
  explicit OurTags(const std::string& path) : TagPairs(path), OurCatalogue(path) {}
};

template <bool by_tag>
bool Lock(OurTags& ours, std::uint64_t number) {
  vdstomgr::ItemGroupArray groups;
  const int count = ours.Lock_FilteredTagItemList(groups, ours.Pair(number), by_tag, 255, 255);
  const bool done = count == (by_tag ? 2 : 1) && groups[0].pItemList->GetSize() == kPhotosPerTag;
  ours.Free_FilteredTagItemList(groups);
  return done;
}

using Items = std::vector<std::unique_ptr<GA_ITEMINFO>>;

std::unique_ptr<GA_ITEMINFO> ItemOf(Reader& r) {
  auto item = std::make_unique<GA_ITEMINFO>();
  std::int32_t shot = 0, registered = 0;
  r.Text(item->GUID), item->SetFileName(r.Text()), r.Number(item->Public), r.Number(item->Flag);
  r.Number(item->Comment), item->SetFileSize(r.Size()), r.Number(item->Width);
  r.Number(item->Height), r.Number(item->dwFolderID), r.Number(item->Rotate);
  r.Time(shot), item->SetShootDate(shot), r.Time(registered), item->SetRegDate(registered);
  r.Number(item->ExifISO);
  return item;
}

class PeerTags : public TagPairs {
 public:
  explicit PeerTags(const std::string& path) : TagPairs(path), db_(path) {
    const std::string columns =
        "p.szGUID, p.szFileName, p.bytePublic, p.byteFlag, p.byteComment, p.dxFileSize, p.wWidth, "
        "p.wHeight, p.dwFolderID, p.byteRotate, p.szShootDate, p.szRegDate, p.wExifISO ";
    by_tag_ = db_.Prepare("SELECT " + columns +
                          ", t.dwTagID FROM PhotoTag as t JOIN PhotoMaster "
                          "as p ON p.szGUID = t.szGUID WHERE t.dwTagID IN (?1, ?2) "
                          "ORDER BY t.dwTagID");
    for (const char* sql :
         {"DELETE FROM IX_PT", "INSERT INTO IX_PT SELECT szGUID FROM PhotoTag WHERE dwTagID = ?1",
          "DELETE FROM IX_PT1",
          "INSERT INTO IX_PT1 SELECT t.szGUID FROM PhotoTag as t JOIN IX_PT as i "
          "ON t.szGUID = i.szGUID WHERE t.dwTagID = ?1",
          "DELETE FROM IX_PT WHERE szGUID NOT IN (SELECT szGUID FROM IX_PT1)"})
      intersect_.push_back(db_.Prepare(sql));
    with_all_ =
        db_.Prepare("SELECT " + columns + "FROM IX_PT as i JOIN PhotoMaster as p USING (szGUID)");
  }

  Items ByTag(const CDWordArray& tags) {
    Binder(by_tag_).Number(tags[0]).Number(tags[1]);
    return Read(by_tag_);
  }

  Items WithAll(const CDWordArray& tags) {
    db_.Begin();
    Binder(intersect_[1]).Number(tags[0]);
    Binder(intersect_[3]).Number(tags[1]);
    for (const PeerStatement& statement : intersect_) PeerDatabase::Run(statement);
    Items items = Read(with_all_);
    db_.Commit();
    return items;
  }

 private:
  static Items Read(const PeerStatement& query) {
    Items items;
    while (Next(query)) {
      Reader reader(query.get());
      items.push_back(ItemOf(reader));
    }
    Reset(query);
    return items;
  }

  PeerDatabase db_;
  PeerStatement by_tag_;
  std::vector<PeerStatement> intersect_;
  PeerStatement with_all_;
};

bool ByTag(PeerTags& peer, std::uint64_t number) {
  return peer.ByTag(peer.Pair(number)).size() > kPhotosPerTag;
}

bool WithAll(PeerTags& peer, std::uint64_t number) {
  return peer.WithAll(peer.Pair(number)).size() == kPhotosPerTag;
}

}  // namespace

std::vector<Case> TagCases() {
  return {
      {"Lock_FilteredTagItemList", On(Lock<true>), On(ByTag), 50},
      {"Lock_FilteredTagItemList, all", On(Lock<false>), On(WithAll), 50, 0, kWorkTables},
  };
}

}  // namespace bench
