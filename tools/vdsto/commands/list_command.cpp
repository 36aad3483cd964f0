#include <algorithm>
#include <nlohmann/json.hpp>

#include "tools/vdsto/commands/catalogue_path.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/commands/photo_text.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

using Json = nlohmann::ordered_json;

struct Listing {
  uint32_t folder = 0;
  std::string path;
  vdstomgr::FolderArray folders;
  vdstomgr::PhotoArray photos;
};

Listing ReadListing(Library& library, const std::string& path) {
  CataloguePath paths(library);
  Listing listing;
  listing.folder = paths.Folder(path);
  listing.path = paths.NameOf(listing.folder);
  library.Call(
      [&](auto& catalogue) { return catalogue.GetFolderList(listing.folders, listing.folder); });
  library.Call(
      [&](auto& catalogue) { return catalogue.GetPhotoInFolder(listing.folder, listing.photos); });
  return listing;
}

using Row = std::vector<std::string>;

/// Size and pixels stand right, the name comes last and needs no filling.
void PrintRows(const std::vector<Row>& rows, std::ostream& out) {
  std::vector<size_t> widths;
  for (const Row& row : rows) {
    widths.resize(row.size());
    for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], DisplayWidth(row[i]));
  }
  for (const Row& row : rows) {
    for (size_t i = 0; i + 1 < row.size(); ++i) out << Padded(row[i], widths[i], i > 0) << "  ";
    out << row.back() << '\n';
  }
}

void Print(const Listing& listing, std::ostream& out) {
  std::vector<Row> rows;
  for (const FOLDERINFO& folder : listing.folders)
    rows.push_back({"", "", "", Printable(folder.szFolderName) + "/"});
  for (const PHOTOINFO& photo : listing.photos) {
    rows.push_back({TimeText(photo.ShootDate), HumanSize(photo.FileSize), PixelText(photo),
                    Printable(photo.GetFileName())});
  }
  PrintRows(rows, out);
}

Json AsJson(const Listing& listing) {
  auto folders = Json::array();
  for (const FOLDERINFO& folder : listing.folders) {
    folders.push_back(
        {{"id", static_cast<int32_t>(folder.dwFolderID)}, {"name", folder.szFolderName}});
  }
  auto photos = Json::array();
  for (const PHOTOINFO& photo : listing.photos) photos.push_back(PhotoAsJson(photo, listing.path));
  return {{"path", listing.path},
          {"id", static_cast<int32_t>(listing.folder)},
          {"folders", std::move(folders)},
          {"photos", std::move(photos)}};
}

}  // namespace

void RunList(Library& library, const std::string& path, OutputForm form, std::ostream& out) {
  const Listing listing = ReadListing(library, path);
  if (form == OutputForm::kJson) {
    out << JsonText(AsJson(listing));
  } else {
    Print(listing, out);
  }
}

}  // namespace vdsto
