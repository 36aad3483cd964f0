#include "tools/vdsto/gallery/gallery.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/library/photo_texts.h"
#include "tools/vdsto/selection/tags.h"
#include "tools/vdsto/text/clock_time.h"

namespace vdsto {
namespace {

bool IsShownBefore(const GalleryPhoto& left, const GalleryPhoto& right) {
  const auto key = [](const GalleryPhoto& photo) {
    return std::tuple(!IsTime(photo.item.ShootDate), photo.item.ShootDate,
                      std::string_view(photo.item.GetFileName()));
  };
  return key(left) < key(right);
}

std::string CameraOf(const PHOTOINFO& photo) {
  const std::string model = photo.GetCameraModel(), lens = photo.GetCameraLens();
  return model.empty() || lens.empty() ? model + lens : model + ", " + lens;
}

/// The places of a gallery's folders, which it adds as they are met, each after the one it is in.
class FolderPlaces {
 public:
  FolderPlaces(Library& library, std::vector<GalleryFolder>& folders) : folders_(folders) {
    for (const FOLDERINFO& folder : library.AllFolders()) known_[folder.dwFolderID] = folder;
  }

  int Of(uint32_t id) {
    const auto [place, is_new] = places_.try_emplace(id, kNoParent);  // which ends a circle
    if (!is_new) return place->second;
    GalleryFolder added;
    if (const auto folder = known_.find(id); folder != known_.end()) {
      added.name = folder->second.szFolderName;
      const uint32_t parent = folder->second.dwParentID;
      if (known_.contains(parent)) added.parent = Of(parent);
    }
    folders_.push_back(std::move(added));
    return places_[id] = static_cast<int>(folders_.size()) - 1;
  }

 private:
  static constexpr int kNoParent = -1;

  std::vector<GalleryFolder>& folders_;
  std::unordered_map<uint32_t, FOLDERINFO> known_;
  std::unordered_map<uint32_t, int> places_;
};

/// The same for its tags.
class TagPlaces {
 public:
  explicit TagPlaces(std::vector<std::string>& tags) : tags_(tags) {}

  size_t Of(const TAGINFO& tag) {
    const auto [place, is_new] = places_.try_emplace(tag.dwTagID, tags_.size());
    if (is_new) tags_.emplace_back(tag.szTagName);
    return place->second;
  }

 private:
  std::vector<std::string>& tags_;
  std::unordered_map<uint32_t, size_t> places_;
};

/// The photos under tags, lent by the catalogue.
class LentGroups {
 public:
  explicit LentGroups(Library& library) : library_(library) {}
  ~LentGroups() {
    library_.Call([&](auto& catalogue) {
      catalogue.Free_FilteredTagItemList(groups_);
      return true;
    });
  }
  LentGroups(const LentGroups&) = delete;
  LentGroups& operator=(const LentGroups&) = delete;

  std::unordered_set<std::string> WithAll(const CDWordArray& tags) {
    library_.Call([&](auto& catalogue) {
      return catalogue.Lock_FilteredTagItemList(groups_, tags, false, kAll, kAll);
    });
    std::unordered_set<std::string> guids;
    for (const GA_ITEMINFO_GROUP& group : groups_) {
      for (const GA_ITEMINFO* item : *group.pItemList) guids.insert(item->GUID);
    }
    return guids;
  }

 private:
  static constexpr BYTE kAll = 255;

  Library& library_;
  vdstomgr::ItemGroupArray groups_;
};

}  // namespace

Gallery ReadGallery(Library& library, const CStringArray& guids) {
  Gallery gallery;
  FolderPlaces folders(library, gallery.folders);
  TagPlaces tags(gallery.tags);
  TagsOfPhotos tags_of(library);
  PhotoTexts& texts_of = library.TextsOfPhotos();
  for (const CString& guid : guids) {
    const auto photo = library.Photo(guid.Str());
    if (!photo) continue;
    GalleryPhoto shown;
    shown.item.SetPhotoInfo(&*photo);
    shown.image_key = ImageKeyOf(photo->GetLTBURL());
    PhotoTexts::Texts texts = texts_of.Of(photo->szGUID);
    shown.title = std::move(texts.title);
    shown.description = std::move(texts.description);
    shown.camera = CameraOf(*photo);
    shown.folder = static_cast<size_t>(folders.Of(photo->dwFolderID));
    for (const TAGINFO& tag : tags_of.Of(photo->szGUID)) shown.tags.push_back(tags.Of(tag));
    gallery.photos.push_back(std::move(shown));
  }
  std::stable_sort(gallery.photos.begin(), gallery.photos.end(), IsShownBefore);
  return gallery;
}

CStringArray WithAllTags(Library& library, const CStringArray& guids,
                         const std::vector<TAGINFO>& tags) {
  CDWordArray ids;
  for (const TAGINFO& tag : tags) ids.Add(tag.dwTagID);
  const auto tagged = LentGroups(library).WithAll(ids);
  CStringArray left;
  for (const CString& guid : guids) {
    if (tagged.contains(guid.Str())) left.Add(guid);
  }
  return left;
}

}  // namespace vdsto
