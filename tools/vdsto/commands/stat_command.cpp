#include <algorithm>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>

#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/commands/photo_text.h"
#include "tools/vdsto/library/folder_tree.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/picture/picture_format.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

using Json = nlohmann::ordered_json;

struct Total {
  uint64_t photos = 0;
  uint64_t bytes = 0;

  void Add(const PHOTOINFO& photo) {
    ++photos;
    bytes += photo.FileSize;
  }
};

struct Statistics {
  Total all;
  uint64_t folders = 0;
  uint64_t not_shown = 0;
  std::map<std::string, Total> by_type;  // by extension
  int32_t first_shot = 0;
  int32_t last_shot = 0;

  void Add(const PHOTOINFO& photo) {
    all.Add(photo);
    by_type[ExtensionOf(photo.GetFileName())].Add(photo);
    if (!CanBeShown(photo)) ++not_shown;
    if (photo.ShootDate == 0) return;
    first_shot = first_shot == 0 ? photo.ShootDate : std::min(first_shot, photo.ShootDate);
    last_shot = std::max(last_shot, photo.ShootDate);
  }
};

void AddFolder(Library& library, const TreeFolder& folder, Statistics& statistics) {
  if (folder.photos > 0) {
    vdstomgr::PhotoArray photos;
    library.Call([&](auto& catalogue) { return catalogue.GetPhotoInFolder(folder.id, photos); });
    for (const PHOTOINFO& photo : photos) statistics.Add(photo);
  }
  statistics.folders += folder.folders.size();
  for (const TreeFolder& child : folder.folders) AddFolder(library, child, statistics);
}

uint64_t FileSizeOf(const std::string& path) {
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  return error ? 0 : size;
}

void Print(const Statistics& statistics, const Library& library, std::ostream& out) {
  const auto line = [&](std::string_view label, const std::string& value) {
    out << Padded(label, 12) << value << '\n';
  };
  line("catalogue",
       Printable(library.CataloguePath()) + ", " + HumanSize(FileSizeOf(library.CataloguePath())));
  const uint64_t image_bytes = ImageStoreBytes(library.Folder());
  line("images", image_bytes == 0
                     ? "none yet"
                     : Printable(ImageStorePath(library.Folder())) + ", " + HumanSize(image_bytes));
  line("photos", std::to_string(statistics.all.photos) + ", " + HumanSize(statistics.all.bytes));
  line("not shown", std::to_string(statistics.not_shown));
  line("folders", std::to_string(statistics.folders));
  if (statistics.first_shot != 0) {
    line("taken", TimeText(statistics.first_shot) + " to " + TimeText(statistics.last_shot));
  }
  for (const auto& [type, total] : statistics.by_type) {
    line("  " + (type.empty() ? "(none)" : Printable(type)),
         Padded(std::to_string(total.photos), 8, true) + "  " +
             Padded(HumanSize(total.bytes), 8, true));
  }
}

Json AsJson(const Statistics& statistics, const Library& library) {
  auto types = Json::object();
  for (const auto& [type, total] : statistics.by_type)
    types[type] = {{"photos", total.photos}, {"bytes", total.bytes}};
  const auto time = [](int32_t value) { return value == 0 ? Json() : Json(TimeText(value)); };
  return {{"catalogue", library.CataloguePath()},
          {"catalogue_bytes", FileSizeOf(library.CataloguePath())},
          {"image_store_bytes", ImageStoreBytes(library.Folder())},
          {"photos", statistics.all.photos},
          {"bytes", statistics.all.bytes},
          {"not_shown", statistics.not_shown},
          {"folders", statistics.folders},
          {"first_shot", time(statistics.first_shot)},
          {"last_shot", time(statistics.last_shot)},
          {"by_type", std::move(types)}};
}

}  // namespace

void RunStat(Library& library, OutputForm form, std::ostream& out) {
  Statistics statistics;
  for (const TreeFolder& root : ReadFolderTree(library)) AddFolder(library, root, statistics);
  if (form == OutputForm::kJson) {
    out << JsonText(AsJson(statistics, library));
  } else {
    Print(statistics, library, out);
  }
}

}  // namespace vdsto
