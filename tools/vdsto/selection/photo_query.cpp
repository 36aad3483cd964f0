#include "tools/vdsto/selection/photo_query.h"

#include <set>

#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/selection/photo_search.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {

CStringArray SelectPhotos(Library& library, const PhotoQuery& query) {
  if (query.texts.empty() && !query.filter.IsEmpty())
    throw ToolError(ExitCode::kUsage,
                    "--since, --until, --camera, --rating and --folder narrow --find, which is "
                    "not there");
  CStringArray guids;
  if (!query.photos.words.empty()) guids = SelectPhotos(library, query.photos);
  if (query.texts.empty()) return guids;
  CataloguePath paths(library);
  PhotoSearch search(library, paths, query.filter, PhotoSearch::kMost);
  search.AddPhotosNamed(query.texts);
  if (search.Photos().IsEmpty())
    throw ToolError(ExitCode::kNotFound, "vdsto find finds no such photo: nothing was done");
  std::set<std::string> known;
  for (const CString& guid : guids) known.insert(guid.Str());
  for (const PHOTOINFO& photo : search.Photos())
    if (known.insert(photo.szGUID).second) guids.Add(photo.szGUID);
  return guids;
}

}  // namespace vdsto
