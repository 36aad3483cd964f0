#include "tools/vdsto/library/folder_rows.h"

#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {

FolderRows::FolderRows(const vdstomgr::PhotoArray& photos) {
  for (const PHOTOINFO& photo : photos) {
    const std::string location = photo.GetOPURL();
    const std::string thumbnail = photo.GetLTBURL();
    const KnownFile known{photo.szGUID, StampOf(photo), ImageKeyOf(thumbnail),
                          thumbnail == location};
    if (location.empty()) {
      by_name_.emplace(photo.GetFileName(), known);
      continue;
    }
    by_location_.emplace(location, known);
    if (const std::string path = PathOf(location); !path.empty())
      source_folders_.push_back(ParentOf(path));
  }
}

const KnownFile* FolderRows::Find(const std::string& path) const {
  const std::string location = LocationOf(path);
  const auto& rows = location.empty() ? by_name_ : by_location_;
  const auto found = rows.find(location.empty() ? Composed(LastComponent(path)) : location);
  return found == rows.end() ? nullptr : &found->second;
}

FileStamp StampOf(const PHOTOINFO& photo) {
  return {photo.FileSize, uint64_t{photo.LastWriteTimeHigh} << 32 | photo.LastWriteTimeLow};
}

}  // namespace vdsto
