#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/cli/photo_text.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

std::unordered_map<std::string, PhotoFacts> FactsOf(Library& library,
                                                    const vdstomgr::PhotoArray& photos) {
  std::vector<std::string> guids;
  for (const PHOTOINFO& photo : photos) guids.emplace_back(photo.szGUID);
  return library.FactsOfPhotos().Of(guids);
}

Answer ListFolder(Library& library, const std::string& text) {
  CataloguePath paths(library);
  const uint32_t id = paths.Folder(text);
  const std::string path = paths.NameOf(id);
  Json folders = Json::array();
  Json photos = Json::array();
  Table rows = PhotoTable();
  for (const FOLDERINFO& folder : library.FoldersIn(id)) {
    folders.push_back(
        {{"id", static_cast<int32_t>(folder.dwFolderID)}, {"name", folder.szFolderName}});
    rows.Add({"", "", "", std::string(folder.szFolderName) + "/"});
  }
  const auto all = library.PhotosIn(id);
  const auto facts = FactsOf(library, all);
  for (const PHOTOINFO& photo : all) {
    const auto known = facts.find(photo.szGUID);
    const int32_t gone_since = known == facts.end() ? 0 : known->second.gone_since;
    photos.push_back(PhotoAsJson(photo, path));
    photos.back()["gone_since"] = TimeFact(gone_since).json;
    const std::string name = photo.GetFileName();
    AddPhoto(photo, gone_since == 0 ? name : name + "  (no longer on disk)", rows);
  }
  return {{{"path", path},
           {"id", static_cast<int32_t>(id)},
           {"folders", std::move(folders)},
           {"photos", std::move(photos)}},
          rows.Text()};
}

struct List {
  std::string folder;

  void Declare(Command& command) {
    command.OptionalWord("FOLDER", folder,
                         "The folder, from the personal folder down; a folder of this computer "
                         "that was imported means its mirror");
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    return invocation.Write(ListFolder(library, folder));
  }
};

}  // namespace

void AddList(CommandGroup& tool) {
  tool.Add<List>("ls", "List a folder of the catalogue");
}

}  // namespace vdsto
