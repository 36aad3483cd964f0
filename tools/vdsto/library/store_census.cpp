#include "tools/vdsto/library/store_census.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "tools/vdsto/library/image_store.h"

namespace vdsto {
namespace {

constexpr size_t kGuidLength = 36;

using Keys = std::vector<std::string>;

void Sort(Keys& keys) {
  std::sort(keys.begin(), keys.end());
  keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
}

Keys KeysOfRows(Library& library) {
  Keys keys;
  library.ForEachPhoto([&](const PHOTOINFO& photo) {
    if (std::string key = ImageKeyOf(photo.GetLTBURL()); !key.empty())
      keys.push_back(std::move(key));
  });
  Sort(keys);
  return keys;
}

Keys Without(const Keys& keys, const Keys& others) {
  Keys rest;
  std::set_difference(keys.begin(), keys.end(), others.begin(), others.end(),
                      std::back_inserter(rest));
  return rest;
}

/// The store's keys, when it has changed, are looked at again for those that seem to be missing.
Keys Missing(const std::string& path, const Keys& named, const Keys& stored) {
  Keys missing = Without(named, stored);
  if (missing.empty() || !IsInUse(path)) return missing;
  Keys again;
  vdstomgr::VerifyStorage(path.c_str(), [&](const std::string& key) { again.push_back(key); });
  Sort(again);
  return Without(missing, again);
}

}  // namespace

std::optional<PHOTOINFO> PhotoOfImage(Library& library, const std::string& key) {
  const auto photo = library.Photo(key.substr(0, kGuidLength));
  return photo && ImageKeyOf(photo->GetLTBURL()) == key ? photo : std::nullopt;
}

StoreCensus CompareStore(Library& library) {
  const std::string path = ImageStorePath(library.Folder());
  StoreCensus census;
  Keys stored;
  if (IsImageStoreThere(library.Folder())) {
    census.report = vdstomgr::VerifyStorage(path.c_str(),
                                            [&](const std::string& key) { stored.push_back(key); });
  }
  Sort(stored);
  const Keys named = KeysOfRows(library);
  census.orphans = Without(stored, named).size();
  for (const std::string& key : Missing(path, named, stored))
    census.without_image.push_back(key.substr(0, kGuidLength));
  census.keys = std::move(stored);
  return census;
}

}  // namespace vdsto
