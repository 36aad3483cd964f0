#include "tools/vdsto/import/known_photos.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <set>

#include "tools/vdsto/text/source_location.h"

namespace vdsto {
namespace {

uint64_t HashOf(const std::string& text) {
  return std::hash<std::string>()(text);
}

/// Nothing tells one empty file from another.
uint64_t HashOfContents(const std::string& md5, uint64_t size) {
  return md5.empty() || size == 0 ? 0 : HashOf(md5 + std::to_string(size));
}

bool IsBefore(const KnownPhotos::Photo& photo, const std::string& guid) {
  return std::strcmp(photo.guid.data(), guid.c_str()) < 0;
}

template <class Table>
auto EqualTo(const Table& table, uint64_t hash) {
  return std::equal_range(table.begin(), table.end(), std::pair(hash, KnownPhotos::Index{}),
                          [](auto& a, auto& b) { return a.first < b.first; });
}

void Take(const PhotoFacts& facts, const ImportPlaces& places, KnownPhotos::Photo& photo) {
  photo.path_hash = HashOf(facts.path);
  photo.content_hash = HashOfContents(facts.md5, facts.stamp.size);
  photo.is_gone = facts.gone_since != 0;
  photo.is_imported = places.IsImported(facts.path);
}

}  // namespace

PhotoFacts FactsOfRow(const PHOTOINFO& photo) {
  PhotoFacts facts;
  facts.guid = photo.szGUID;
  facts.path = PathOf(photo.GetOPURL());
  facts.stamp = StampOf(photo);
  facts.md5 = photo.szMD5;
  facts.state = *photo.GetLTBURL() == '\0' ? PictureState::kBroken : PictureState::kGood;
  return facts;
}

KnownPhotos::KnownPhotos(Library& library, ImportPlaces& places) {
  ReadGuids(library);
  ReadFacts(library.FactsOfPhotos(), places);
  ReadRowsWithoutFacts(library, places);
  MakeTables();
}

void KnownPhotos::ReadGuids(Library& library) {
  vdstomgr::CountArray folders;
  library.Call([&](auto& catalogue) { return catalogue.GetPhotoCountInFolders(folders); });
  for (const COUNTINFOLDER& folder : folders) {
    CStringArray guids;
    library.Call(
        [&](auto& catalogue) { return catalogue.GetPhotoInFolder(folder.dwFolderID, guids); });
    for (const CString& guid : guids) {
      Photo& photo = photos_.emplace_back();
      photo.folder = folder.dwFolderID;
      std::strncpy(photo.guid.data(), guid, photo.guid.size() - 1);
    }
  }
  std::sort(photos_.begin(), photos_.end(), [](const Photo& a, const Photo& b) {
    return std::strcmp(a.guid.data(), b.guid.data()) < 0;
  });
}

void KnownPhotos::ReadFacts(FactsDatabase& facts, ImportPlaces& places) {
  facts.ForEachFile([&](const PhotoFacts& file) {
    const auto index = Find(file.guid);
    if (!index) return orphans_.push_back(file.guid);
    places.Observe(file);
    photos_[*index].has_facts = true;
    Take(file, places, photos_[*index]);
    if (file.sidecar != FileStamp()) sidecars_.emplace(*index, file.sidecar);
  });
}

/// After a lost facts file, or of another program's photos.
void KnownPhotos::ReadRowsWithoutFacts(Library& library, const ImportPlaces& places) {
  std::set<uint32_t> folders;
  for (const Photo& photo : photos_)
    if (!photo.has_facts) folders.insert(photo.folder);
  for (const uint32_t folder : folders) {
    for (const PHOTOINFO& row : library.PhotosIn(folder)) {
      const auto index = Find(row.szGUID);
      if (index && !photos_[*index].has_facts) Take(FactsOfRow(row), places, photos_[*index]);
    }
  }
}

void KnownPhotos::MakeTables() {
  for (Index i = 0; i < Count(); ++i) {
    by_path_.emplace_back(photos_[i].path_hash, i);
    if (photos_[i].content_hash != 0) by_contents_.emplace_back(photos_[i].content_hash, i);
  }
  std::sort(by_path_.begin(), by_path_.end());
  std::sort(by_contents_.begin(), by_contents_.end());
}

std::optional<KnownPhotos::Index> KnownPhotos::Find(const std::string& guid) const {
  const auto found = std::lower_bound(photos_.begin(), photos_.end(), guid, IsBefore);
  if (found == photos_.end() || guid != found->guid.data()) return std::nullopt;
  return static_cast<Index>(found - photos_.begin());
}

FileStamp KnownPhotos::SidecarOf(Index index) const {
  const auto found = sidecars_.find(index);
  return found == sidecars_.end() ? FileStamp() : found->second;
}

std::optional<KnownPhotos::Index> KnownPhotos::FindPath(const std::string& path) const {
  const auto [first, last] = EqualTo(by_path_, HashOf(path));
  return first == last ? std::nullopt : std::optional(first->second);
}

std::vector<KnownPhotos::Index> KnownPhotos::FindContents(const PictureFacts& picture) const {
  std::vector<Index> found;
  const auto [first, last] = EqualTo(by_contents_, HashOfContents(picture.md5, picture.stamp.size));
  for (auto place = first; place != last; ++place) found.push_back(place->second);
  return found;
}

}  // namespace vdsto
