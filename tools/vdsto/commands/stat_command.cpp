#include <algorithm>
#include <filesystem>
#include <map>

#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/cli/photo_text.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/folder_tree.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/picture/picture_format.h"
#include "tools/vdsto/text/clock_time.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

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
  int32_t first_shot = 0;                ///< of the dates that are no guesses
  int32_t last_shot = 0;

  void Add(const PHOTOINFO& photo) {
    all.Add(photo);
    by_type[ExtensionOf(photo.GetFileName())].Add(photo);
    if (!CanBeShown(photo)) ++not_shown;
    if (!IsTime(photo.ShootDate) || HasGuessedDate(photo)) return;
    const bool is_first = !IsTime(first_shot);
    first_shot = is_first ? photo.ShootDate : std::min(first_shot, photo.ShootDate);
    last_shot = is_first ? photo.ShootDate : std::max(last_shot, photo.ShootDate);
  }
};

void AddFolder(Library& library, const TreeFolder& folder, Statistics& statistics) {
  if (folder.photos > 0) {
    for (const PHOTOINFO& photo : library.PhotosIn(folder.id)) statistics.Add(photo);
  }
  statistics.folders += folder.folders.size();
  for (const TreeFolder& child : folder.folders) AddFolder(library, child, statistics);
}

uint64_t FileSizeOf(const std::string& path) {
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  return error ? 0 : size;
}

std::string ImageText(const std::string& library_folder, uint64_t bytes) {
  if (bytes == 0) return "none yet";
  return Printable(ImageStorePath(library_folder)) + ", " + HumanSize(bytes);
}

void AddTypes(const Statistics& statistics, Facts& facts) {
  auto types = Json::object();
  for (const auto& [type, total] : statistics.by_type) {
    types[type] = {{"photos", total.photos}, {"bytes", total.bytes}};
    facts.ForPeople("  " + (type.empty() ? "(none)" : Printable(type)),
                    Padded(std::to_string(total.photos), 8, true) + "  " +
                        Padded(HumanSize(total.bytes), 8, true));
  }
  facts.ForPrograms("by_type", std::move(types));
}

Facts Describe(const Statistics& statistics, const Library& library) {
  const uint64_t catalogue_bytes = FileSizeOf(library.CataloguePath());
  const uint64_t image_bytes = ImageStoreBytes(library.Folder());
  const Total& all = statistics.all;
  Facts facts;
  facts
      .Add("catalogue", {library.CataloguePath(),
                         Printable(library.CataloguePath()) + ", " + HumanSize(catalogue_bytes)})
      .ForPrograms("catalogue_bytes", catalogue_bytes)
      .ForPeople("images", ImageText(library.Folder(), image_bytes))
      .ForPrograms("image_store_bytes", image_bytes)
      .Add("photos", {all.photos, std::to_string(all.photos) + ", " + HumanSize(all.bytes)})
      .ForPrograms("bytes", all.bytes)
      .Add("not_shown", statistics.not_shown)
      .Add("folders", statistics.folders)
      .ForPrograms("first_shot", TimeFact(statistics.first_shot).json)
      .ForPrograms("last_shot", TimeFact(statistics.last_shot).json);
  if (IsTime(statistics.first_shot)) {
    facts.ForPeople("taken",
                    TimeText(statistics.first_shot) + " to " + TimeText(statistics.last_shot));
  }
  AddTypes(statistics, facts);
  return facts;
}

struct Stat {
  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    Statistics statistics;
    for (const TreeFolder& root : ReadFolderTree(library)) AddFolder(library, root, statistics);
    return invocation.Write(Describe(statistics, library));
  }
};

}  // namespace

void AddStat(CommandGroup& tool) {
  tool.Add<Stat>("stat", "Show totals");
}

}  // namespace vdsto
