#include "tools/vdsto/selection/photo_search.h"

#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

/// Photos in the trash or filtered out leave room: so many times more are asked for then.
constexpr int kMoreEachTime = 4;

std::string SearchText(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + Composed(word);
  return text;
}

bool CanBeSaidOfFolders(FilterWords filter) {
  filter.folder.clear();
  return filter.IsEmpty();
}

}  // namespace

PhotoSearch::PhotoSearch(Library& library, CataloguePath& paths, const FilterWords& filter,
                         int limit)
    : library_(library),
      limit_(limit),
      filter_(filter, library, paths),
      filters_photos_only_(!CanBeSaidOfFolders(filter)) {
  library_.PrepareSearch();
}

void PhotoSearch::AddPhotosNamed(const std::vector<std::string>& words) {
  const std::string text = SearchText(words);
  const bool by_initials = vdstomgr::IsInitials(text.c_str());
  AddPhotos([&](auto& database, auto& photos, int max) {
    return by_initials ? vdstomgr::SearchFileNameByInitials(database, text.c_str(), photos, max)
                       : database.SearchFileName(text.c_str(), photos, max);
  });
}

void PhotoSearch::AddFoldersNamed(const std::vector<std::string>& words) {
  if (filters_photos_only_) return;
  const std::string text = SearchText(words);
  const bool by_initials = vdstomgr::IsInitials(text.c_str());
  vdstomgr::FolderArray found;
  library_.CallSearch([&](auto& copy) {
    by_initials ? vdstomgr::SearchFolderNameByInitials(copy.Database(), text.c_str(), found, kMost)
                : copy.Database().SearchFolderName(text.c_str(), found, kMost);
  });
  for (const FOLDERINFO& folder : found) {
    if (folders_.size() == size_t(limit_)) return;
    if (filter_.PassesFolder(folder.dwFolderID)) folders_.push_back(folder.dwFolderID);
  }
}

void PhotoSearch::AddPhotos(const PhotoSource& source) {
  for (int asked = limit_;; asked = asked < kMost / kMoreEachTime ? asked * kMoreEachTime : kMost) {
    vdstomgr::PhotoArray found;
    library_.CallSearch([&](auto& copy) { source(copy.Database(), found, asked); });
    TakePassing(found);
    if (photos_.GetSize() == limit_ || found.GetSize() < asked || asked == kMost) return;
  }
}

/// The copy knows names, sizes and dates; everything else the catalogue.
void PhotoSearch::TakePassing(const vdstomgr::PhotoArray& found) {
  photos_.RemoveAll();
  for (const PHOTOINFO& copied : found) {
    if (photos_.GetSize() == limit_) return;
    const auto photo = library_.Photo(copied.szGUID);
    if (photo && filter_.Passes(*photo)) photos_.Add(*photo);
  }
}

}  // namespace vdsto
