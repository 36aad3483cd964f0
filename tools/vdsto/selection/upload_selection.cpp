#include "tools/vdsto/selection/upload_selection.h"

#include <algorithm>
#include <set>

#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

[[noreturn]] void ThrowNotQueued(Library& library, const std::string& guid, const char* how) {
  const auto photo = library.Photo(guid);
  const std::string name = photo ? CataloguePath(library).NameOf(*photo) : guid;
  throw ToolError(ExitCode::kNotFound, Printable(name) + " is not queued: " + how + " queues");
}

}  // namespace

std::vector<Upload> SelectUploads(Library& library, const PhotoWords& words) {
  return SelectUploads(library, words, ReadUploads(library), "vdsto upload add");
}

std::vector<Upload> SelectUploads(Library& library, const PhotoWords& words,
                                  std::vector<Upload> uploads, const char* how) {
  std::set<std::string> queued, wanted;
  for (const Upload& upload : uploads) queued.insert(upload.guid);
  PhotoWords photos = words;
  std::erase_if(photos.words, [&](const std::string& word) {
    return queued.contains(word) && wanted.insert(word).second;
  });
  for (const CString& guid : SelectPhotos(library, photos)) {
    if (!queued.contains(guid.Str())) ThrowNotQueued(library, guid.Str(), how);
    wanted.insert(guid.Str());
  }
  std::erase_if(uploads, [&](const Upload& upload) { return !wanted.contains(upload.guid); });
  return uploads;
}

}  // namespace vdsto
