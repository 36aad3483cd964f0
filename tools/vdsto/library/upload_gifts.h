#pragma once
#include <string>

#include "tools/vdsto/library/library.h"

namespace vdsto {

/// What a photo gets when its upload is done.
struct UploadGifts {
  CDWordArray tags;
  vdstomgr::AlbumIndexArray albums;

  bool IsEmpty() const { return tags.IsEmpty() && albums.IsEmpty(); }
};

/// What waits for a photo's upload.
UploadGifts ReadGifts(Library& library, const std::string& guid);
/// Adds what does not wait yet. Throws ToolError.
void AddGifts(Library& library, const std::string& guid, const UploadGifts& gifts);
/// Does all of it wait already?
bool HasGifts(Library& library, const std::string& guid, const UploadGifts& gifts);
/// Forgets what waits for these photos.
void ForgetGifts(Library& library, const CStringArray& guids);
/// Gives a photo what waits for it.
void GiveGifts(CRkPhotoDBManager& catalogue, const char* guid);

}  // namespace vdsto
