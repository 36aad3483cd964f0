#include "bench/catalogue_case.h"
#include "bench/catalogue_files.h"
#include "bench/catalogue_records.h"
#include "bench/peer_photos.h"
#include "vdstomgr/platform/utility/utility_lib.h"

// Questions about the whole catalogue, and the round of what has changed.
namespace bench {
namespace {

constexpr int kPending = 10'000;

/// Marks photos as changed, one in ten with its tags.
void MarkChanged(const std::string& path, int) {
  const std::string last = std::to_string(kPending);
  RunBeside(path,
            "UPDATE PhotoMaster SET byteInfoSync = 1, byteTagSync = rowid % 10 = 0 "
            "WHERE rowid <= " +
                last);
}

/// One query by hand.
struct PeerQuery {
  PeerQuery(const std::string& path, const char* sql) : db(path), query(db.Prepare(sql)) {}

  template <class Add>
  bool ForEachRow(Add add) {
    while (Next(query)) add(Reader(query.get()));
    Reset(query);
    return true;
  }

  PeerDatabase db;
  PeerStatement query;
};

struct PeerTagCounts : PeerQuery {
  explicit PeerTagCounts(const std::string& path)
      : PeerQuery(path,
                  "SELECT a.dwTagID, a.szTagName, n FROM TagInfo AS a INNER JOIN "
                  "(SELECT dwTagID, COUNT(*) AS n FROM PhotoTag GROUP BY dwTagID) AS b "
                  "ON a.dwTagID = b.dwTagID ORDER BY a.szTagName") {}
};

bool CountTags(OurCatalogue& ours, std::uint64_t) {
  vdstomgr::TagCountArray tags;
  return ours.GetTagListAndCount(tags) == 150;
}

bool CountTagsByHand(PeerTagCounts& peer, std::uint64_t) {
  vdstomgr::TagCountArray tags;
  peer.ForEachRow([&](Reader row) {
    TAGINFOCOUNT tag;
    row.Number(tag.dwTagID), row.Text(tag.szTagName), row.Number(tag.nCount);
    tags.Add(tag);
  });
  return tags.GetSize() == 150;
}

struct PeerFolderCounts : PeerQuery {
  explicit PeerFolderCounts(const std::string& path)
      : PeerQuery(path, "SELECT dwFolderID, COUNT(*) FROM PhotoMaster GROUP BY dwFolderID") {}
};

bool CountFolders(OurCatalogue& ours, std::uint64_t) {
  vdstomgr::CountArray counts;
  return ours.GetPhotoCountInFolders(counts) > 0;
}

bool CountFoldersByHand(PeerFolderCounts& peer, std::uint64_t) {
  vdstomgr::CountArray counts;
  peer.ForEachRow([&](Reader row) {
    COUNTINFOLDER count;
    row.Number(count.dwFolderID), row.Number(count.Count);
    counts.Add(count);
  });
  return !counts.IsEmpty();
}

struct PeerDays : PeerQuery {
  explicit PeerDays(const std::string& path)
      : PeerQuery(path, "SELECT DISTINCT szShootDay FROM PhotoMaster ORDER BY szShootDay") {}
};

bool ListDays(OurCatalogue& ours, std::uint64_t) {
  CDWordArray days;
  return ours.GetShootDateList(days) > 0;
}

bool ListDaysByHand(PeerDays& peer, std::uint64_t) {
  CDWordArray days;
  peer.ForEachRow([&](Reader row) {
    const std::string midnight = std::string(row.Text()) + " 00:00:00";
    days.Add(DWORD(CUtilityLib::GetTime(midnight.c_str())));
  });
  return !days.IsEmpty();
}

/// The round of the synchronisation by hand.
class PeerSync {
 public:
  explicit PeerSync(const std::string& path) : db_(path) {
    for (const char* sql :
         {"UPDATE PhotoSyncProcess SET byteInfoSync = 1 WHERE szGUID IN "
          "(SELECT szGUID FROM PhotoMaster WHERE byteInfoSync = 1)",
          "UPDATE PhotoSyncProcess SET byteTagSync = 1 WHERE szGUID IN "
          "(SELECT szGUID FROM PhotoMaster WHERE byteTagSync = 1)",
          "INSERT OR IGNORE INTO PhotoSyncProcess SELECT szGUID, byteInfoSync, byteTagSync "
          "FROM PhotoMaster WHERE byteInfoSync = 1 OR byteTagSync = 1",
          "UPDATE PhotoMaster SET byteInfoSync = 0, byteTagSync = 0 "
          "WHERE byteInfoSync = 1 OR byteTagSync = 1"})
      take_over_.push_back(db_.Prepare(sql));
    pending_ = db_.Prepare("SELECT " + PhotoColumns("a.") +
                           ", b.byteInfoSync, b.byteTagSync FROM PhotoSyncProcess AS b INNER JOIN "
                           "PhotoMaster AS a ON a.szGUID = b.szGUID LIMIT ?1");
    tags_ = db_.Prepare(
        "SELECT a.dwTagID FROM PhotoTag AS a INNER JOIN TagInfo AS b "
        "ON a.dwTagID = b.dwTagID WHERE a.szGUID = ?1");
    sent_ = db_.Prepare("DELETE FROM PhotoSyncProcess WHERE szGUID = ?1");
  }

  bool TakeOver() {
    db_.Begin();
    bool done = true;
    for (const PeerStatement& statement : take_over_) done = done && db_.Run(statement);
    db_.Commit();
    return done;
  }

  void Pending(vdstomgr::PhotoSyncArray& out) {
    Binder(pending_).Number(kPending);
    while (Next(pending_)) {
      PHOTOSYNC_INFO info;
      Reader row(pending_.get());
      FillPhoto(row, info.Photo);
      row.MoveTo(kPhotoColumnCount);
      row.Number(info.bInfoSync), row.Number(info.bTagSync);
      if (info.bTagSync) AddTags(info);
      out.Add(info);
    }
    Reset(pending_);
  }

  void Sent(const vdstomgr::PhotoSyncArray& photos) {
    db_.Begin();
    for (const PHOTOSYNC_INFO& info : photos) {
      Binder(sent_).Text(info.Photo.szGUID);
      PeerDatabase::Run(sent_);
    }
    db_.Commit();
  }

 private:
  void AddTags(PHOTOSYNC_INFO& info) {
    Binder(tags_).Text(info.Photo.szGUID);
    while (Next(tags_)) {
      DWORD tag = 0;
      Reader(tags_.get()).Number(tag);
      info.TagIDs.Add(tag);
    }
    Reset(tags_);
  }

  PeerDatabase db_;
  std::vector<PeerStatement> take_over_;
  PeerStatement pending_;
  PeerStatement tags_;
  PeerStatement sent_;
};

bool Synchronise(OurCatalogue& ours, std::uint64_t) {
  vdstomgr::PhotoSyncArray pending;
  ours.MovePhotoSyncFlag();
  return ours.GetPhotoSyncAllInfo(pending, kPending) && pending.GetSize() == kPending &&
         ours.DelPhotoSyncAllInfo(pending);
}

bool SynchroniseByHand(PeerSync& peer, std::uint64_t) {
  vdstomgr::PhotoSyncArray pending;
  const bool taken = peer.TakeOver();
  peer.Pending(pending);
  peer.Sent(pending);
  return taken && pending.GetSize() == kPending;
}

}  // namespace

std::vector<Case> SummaryCases() {
  Case round{.name = "MovePhotoSyncFlag to Del...",
             .ours = On(Synchronise),
             .peer = On(SynchroniseByHand),
             .iterations = 3,
             .items = kPending};
  round.prepare = MarkChanged;
  round.note = "with GetPhotoSyncAllInfo and DelPhotoSyncAllInfo of 10,000 photos";
  return {
      {"GetTagListAndCount", On(CountTags), On(CountTagsByHand), 5},
      {"GetPhotoCountInFolders", On(CountFolders), On(CountFoldersByHand), 5},
      {"GetShootDateList", On(ListDays), On(ListDaysByHand), 5},
      round,
  };
}

}  // namespace bench
