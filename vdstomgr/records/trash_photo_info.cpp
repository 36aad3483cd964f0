#include "vdstomgr/records/trash_photo_info.h"

#include <string_view>

namespace {

constexpr std::size_t kLongestFolderPath = 510;

}  // namespace

void TRASHPHOTOINFO::SetLTBURL(const char* location) {
  vdstomgr::SetFixed(szLTBURL, location);
  vdstomgr::MarkThumbnail(*this, szLTBURL[0] != '\0');
}

void TRASHPHOTOINFO::SetFolderPath(const char* path) {
  const std::string_view whole = path == nullptr ? "" : path;
  vdstomgr::CopyToFixed(szFolderPath, whole.size() > kLongestFolderPath ? "?" : whole);
}
