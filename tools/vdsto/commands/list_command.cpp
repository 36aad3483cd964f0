#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/cli/photo_text.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

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
  for (const PHOTOINFO& photo : library.PhotosIn(id)) {
    photos.push_back(PhotoAsJson(photo, path));
    AddPhoto(photo, photo.GetFileName(), rows);
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
