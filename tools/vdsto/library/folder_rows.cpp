#include "tools/vdsto/library/folder_rows.h"

#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {

FolderRows::FolderRows(const vdstomgr::PhotoArray& photos) {
  for (const PHOTOINFO& photo : photos) {
    const std::string location = photo.GetOPURL();
    if (location.empty()) {
      by_name_.emplace(photo.GetFileName(), KnownFileOf(photo));
      continue;
    }
    by_location_.emplace(location, KnownFileOf(photo));
    if (const std::string path = PathOf(location); !path.empty())
      source_folders_.push_back(ParentOf(path));
  }
}

const KnownFile* FolderRows::Find(const std::string& path) const {
  const auto found = by_location_.find(LocationOf(path));
  return found == by_location_.end() ? nullptr : &found->second;
}

const KnownFile* FolderRows::FindNamed(const std::string& path) const {
  const auto found = by_name_.find(Composed(LastComponent(path)));
  return found == by_name_.end() ? nullptr : &found->second;
}

KnownFile KnownFileOf(const PHOTOINFO& photo) {
  const std::string location = photo.GetOPURL();
  const std::string thumbnail = photo.GetLTBURL();
  return {photo.szGUID, StampOf(photo), ImageKeyOf(thumbnail),
          !location.empty() && thumbnail == location};
}

FileStamp StampOf(const PHOTOINFO& photo) {
  return {photo.FileSize, uint64_t{photo.LastWriteTimeHigh} << 32 | photo.LastWriteTimeLow};
}

}  // namespace vdsto
