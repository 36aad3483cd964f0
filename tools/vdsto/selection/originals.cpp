#include "tools/vdsto/selection/originals.h"

#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

vdstomgr::CountArray FoldersWithPhotos(Library& library) {
  vdstomgr::CountArray counts;
  library.Call([&](auto& catalogue) { return catalogue.GetPhotoCountInFolders(counts); });
  return counts;
}

}  // namespace

std::optional<PHOTOINFO> PhotoOfFile(Library& library, FileIdentity file) {
  for (const COUNTINFOLDER& folder : FoldersWithPhotos(library)) {
    for (const PHOTOINFO& photo : library.PhotosIn(folder.dwFolderID)) {
      if (IdentityOf(PathOf(photo.GetOPURL())) == file) return photo;
    }
  }
  return std::nullopt;
}

std::optional<PHOTOINFO> PhotoOfPlace(Library& library, const std::string& folder,
                                      const std::string& name) {
  if (const auto photo = CataloguePath(library).FindFile(folder, name)) return photo;
  const auto place = IdentityOf(folder);
  for (const COUNTINFOLDER& known : FoldersWithPhotos(library)) {
    CStringArray guids;
    library.Call([&](auto& catalogue) {
      return catalogue.GetPhotoGUID(known.dwFolderID, Composed(name).c_str(), guids);
    });
    for (const CString& guid : guids) {
      const auto photo = library.Photo(guid.Str());
      const std::string original = photo ? PathOf(photo->GetOPURL()) : std::string();
      if (!original.empty() && IdentityOf(ParentOf(original)) == place) return photo;
    }
  }
  return std::nullopt;
}

}  // namespace vdsto
