#include "tools/vdsto/library/upload_gifts.h"

#include <algorithm>

namespace vdsto {
namespace {

template <class Array>
Array Missing(const Array& wanted, const Array& there) {
  Array missing;
  for (auto gift : wanted) {
    if (std::find(there.begin(), there.end(), gift) == there.end() &&
        std::find(missing.begin(), missing.end(), gift) == missing.end())
      missing.Add(gift);
  }
  return missing;
}

UploadGifts Read(CRkPhotoDBManager& catalogue, const char* guid) {
  UploadGifts gifts;
  catalogue.GetUploadTag(guid, gifts.tags);
  catalogue.GetUploadAlbum(guid, gifts.albums);
  return gifts;
}

UploadGifts MissingGifts(Library& library, const std::string& guid, const UploadGifts& wanted) {
  const UploadGifts there = ReadGifts(library, guid);
  return {Missing(wanted.tags, there.tags), Missing(wanted.albums, there.albums)};
}

}  // namespace

UploadGifts ReadGifts(Library& library, const std::string& guid) {
  return library.Call([&](auto& catalogue) { return Read(catalogue, guid.c_str()); });
}

void AddGifts(Library& library, const std::string& guid, const UploadGifts& gifts) {
  const UploadGifts missing = MissingGifts(library, guid, gifts);
  library.Call([&](auto& catalogue) {
    return catalogue.AddUploadTag(guid.c_str(), missing.tags) &&
           catalogue.AddUploadAlbum(guid.c_str(), missing.albums);
  });
}

bool HasGifts(Library& library, const std::string& guid, const UploadGifts& gifts) {
  return gifts.IsEmpty() || MissingGifts(library, guid, gifts).IsEmpty();
}

void ForgetGifts(Library& library, const CStringArray& guids) {
  library.Call([&](auto& catalogue) {
    return catalogue.DelUploadTag(guids) && catalogue.DelUploadAlbum(guids);
  });
}

void GiveGifts(CRkPhotoDBManager& catalogue, const char* guid) {
  const UploadGifts gifts = Read(catalogue, guid);
  for (const DWORD tag : gifts.tags) catalogue.AddTag(guid, tag, true);
  if (!gifts.tags.IsEmpty()) catalogue.DelUploadTag(guid);
  for (const ALBUMINDEX& album : gifts.albums)
    catalogue.AddAlbum(guid, album.dwRoomID, album.dwAlbumID);
  if (!gifts.albums.IsEmpty()) catalogue.DelUploadAlbum(guid);
}

}  // namespace vdsto
