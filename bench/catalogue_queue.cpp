#include "bench/catalogue_case.h"
#include "bench/catalogue_records.h"
#include "bench/peer_queue.h"

namespace bench {
namespace {

constexpr int kPage = 60;
constexpr int kMoved = 60;  // the position of the row that is moved to the front

/// The library's queue, filled like the peer's.
struct OurQueue {
  explicit OurQueue(const std::string& path) : rows(PeerQueue(path).Rows()), catalogue(path) {}

  int rows;
  OurCatalogue catalogue;
};

std::string GuidIn(int rows, std::uint64_t number) {
  return GuidOf(number % std::uint64_t(rows));
}

UPLOADLIST NewRow() {
  UPLOADLIST row;
  std::snprintf(row.szGUID, sizeof row.szGUID, "new-%d", Fresh());
  row.SetFileName("사진.JPG");
  row.nDispOrder = 200'000 + Fresh();
  return row;
}

/// A claimed row goes back, so that the queue stays as it is.
bool ClaimOurs(OurQueue& ours, std::uint64_t) {
  UPLOADLIST row;
  return ours.catalogue.GetNextUploadList(row) && ours.catalogue.SetUploadListStatus(row.szGUID, 0);
}
bool ClaimPeers(PeerQueue& peer, std::uint64_t) {
  UPLOADLIST row;
  return peer.Claim(row) && peer.SetStatus(row.szGUID, 0);
}

bool SetOurStatus(OurQueue& ours, std::uint64_t number) {
  return ours.catalogue.SetUploadListStatus(GuidIn(ours.rows, number).c_str(), Fresh());
}
bool SetPeersStatus(PeerQueue& peer, std::uint64_t number) {
  return peer.SetStatus(GuidIn(peer.Rows(), number).c_str(), Fresh());
}

bool SendOurs(OurQueue& ours, std::uint64_t number) {
  return ours.catalogue.UpdateSentBytesInUploadInfo(GuidIn(ours.rows, number).c_str(),
                                                    std::uint64_t(Fresh())) == 1;
}
bool SendPeers(PeerQueue& peer, std::uint64_t number) {
  return peer.SetSentBytes(GuidIn(peer.Rows(), number).c_str(), std::uint64_t(Fresh()));
}

bool ReadOurs(OurQueue& ours, std::uint64_t number) {
  UPLOADLIST row;
  return ours.catalogue.GetUploadInfo(GuidIn(ours.rows, number).c_str(), row);
}
bool ReadPeers(PeerQueue& peer, std::uint64_t number) {
  UPLOADLIST row;
  return peer.Read(GuidIn(peer.Rows(), number).c_str(), row);
}

bool AddOurs(OurQueue& ours, std::uint64_t) {
  UPLOADLIST row = NewRow();
  ours.catalogue.AddUploadList(row);
  return ours.catalogue.DelUploadList(row.szGUID);
}
bool AddPeers(PeerQueue& peer, std::uint64_t) {
  const UPLOADLIST row = NewRow();
  return peer.Insert(row) && peer.Delete(row.szGUID);
}

bool MoveOurs(OurQueue& ours, std::uint64_t) {
  CDWordArray selected{kMoved};
  return ours.catalogue.SetUploadReorder_TOP(selected) == 0;
}
bool MovePeers(PeerQueue& peer, std::uint64_t) {
  return peer.MoveToFront(kMoved);
}

bool PageOurs(OurQueue& ours, std::uint64_t) {
  vdstomgr::UploadListArray page;
  return ours.catalogue.cGetUploadListByIndex(page, kPage, ours.rows / 10 * 9) == kPage;
}
bool PagePeers(PeerQueue& peer, std::uint64_t) {
  vdstomgr::UploadListArray page;
  return peer.ReadPage(page, kPage, peer.Rows() / 10 * 9) == kPage;
}

}  // namespace

std::vector<Case> QueueCases() {
  return {{"upload: claim and give back", On(ClaimOurs), On(ClaimPeers), 2000},
          {"upload: SetUploadListStatus", On(SetOurStatus), On(SetPeersStatus), 2000},
          {"upload: UpdateSentBytes", On(SendOurs), On(SendPeers), 2000},
          {"upload: GetUploadInfo", On(ReadOurs), On(ReadPeers), 10'000},
          {"upload: add and delete", On(AddOurs), On(AddPeers), 2000},
          {"upload: row 60 to the top", On(MoveOurs), On(MovePeers), 100},
          {"upload: 60 rows at 90 %", On(PageOurs), On(PagePeers), 50}};
}

}  // namespace bench
