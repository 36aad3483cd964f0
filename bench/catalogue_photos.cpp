#include "bench/catalogue_case.h"
#include "bench/catalogue_records.h"
#include "bench/peer_photos.h"

namespace bench {
namespace {

constexpr int kBatch = 1000;
constexpr char kWritesAll[] = "the hand-written update writes every column";

using Guid = std::string (*)(std::uint64_t number);

CArray<PHOTOINFO, PHOTOINFO&> BatchFrom(std::uint64_t number, Guid guid) {
  CArray<PHOTOINFO, PHOTOINFO&> batch;
  for (int i = 0; i < kBatch; ++i) {
    PHOTOINFO photo = PhotoOf(number + std::uint64_t(i));
    photo.SetGUID(guid(number + std::uint64_t(i)).c_str());
    batch.Add(photo);
  }
  return batch;
}

template <Guid guid>
bool AddBatch(OurCatalogue& ours, std::uint64_t number) {
  CArray<PHOTOINFO, PHOTOINFO&> batch = BatchFrom(number, guid);
  return ours.AddPhotoInfo(batch);
}

template <Guid guid>
bool InsertBatch(PeerPhotos& peer, std::uint64_t number) {
  const CArray<PHOTOINFO, PHOTOINFO&> batch = BatchFrom(number, guid);
  peer.Begin();
  bool done = true;
  for (const PHOTOINFO& photo : batch) done = done && peer.Insert(photo);
  peer.Commit();
  return done;
}

bool Add(OurCatalogue& ours, std::uint64_t number) {
  PHOTOINFO photo = PhotoOf(number);
  return ours.AddPhotoInfo(photo, false);
}

bool Insert(PeerPhotos& peer, std::uint64_t number) {
  const PHOTOINFO photo = PhotoOf(number);
  return !peer.Has(photo.szGUID) && peer.Insert(photo);
}

bool Get(OurCatalogue& ours, std::uint64_t number) {
  PHOTOINFO photo;
  return ours.GetPhotoInfo(GuidOf(number).c_str(), photo);
}

bool Read(PeerPhotos& peer, std::uint64_t number) {
  PHOTOINFO photo;
  return peer.Read(GuidOf(number).c_str(), photo);
}

/// A record that differs from the stored one in nearly every column, the indexed ones included.
PHOTOINFO Replaced(std::uint64_t number) {
  PHOTOINFO photo = PhotoOf(number + 10'000'000 + std::uint64_t(Fresh()) * 7);
  photo.SetGUID(GuidOf(number).c_str());
  photo.SetUserModify(1'710'000'000 + Fresh());
  photo.SetRegDate(1'710'000'000 + Fresh() * 86'400 % 100'000'000);
  return photo;
}

/// A record of which only the time of modification differs from the stored one.
PHOTOINFO Touched(std::uint64_t number) {
  PHOTOINFO photo = PhotoOf(number);
  photo.SetUserModify(1'710'000'000 + Fresh());
  return photo;
}

template <PHOTOINFO (*changed)(std::uint64_t number)>
bool Set(OurCatalogue& ours, std::uint64_t number) {
  PHOTOINFO photo = changed(number);
  return ours.SetPhotoInfo(photo, false);
}

template <PHOTOINFO (*changed)(std::uint64_t number)>
bool Update(PeerPhotos& peer, std::uint64_t number) {
  return peer.Update(changed(number));
}

}  // namespace

std::vector<Case> PhotoCases() {
  return {
      {"AddPhotoInfo batch", On(AddBatch<GuidOf>), On(InsertBatch<GuidOf>), 5, kBatch},
      {"AddPhotoInfo batch, random keys", On(AddBatch<RandomGuidOf>), On(InsertBatch<RandomGuidOf>),
       5, kBatch},
      {"AddPhotoInfo", On(Add), On(Insert), 2000, 1},
      {"GetPhotoInfo", On(Get), On(Read), 20'000},
      {"SetPhotoInfo", On(Set<Replaced>), On(Update<Replaced>), 3000},
      {"SetPhotoInfo, 1 column", On(Set<Touched>), On(Update<Touched>), 3000, 0, kWritesAll},
  };
}

}  // namespace bench
