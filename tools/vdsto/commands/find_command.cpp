#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/cli/photo_text.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/selection/photo_search.h"

namespace vdsto {
namespace {

/// What all searches take, and how they answer.
struct SearchOptions {
  FilterWords filter;
  int limit = 100;
  bool ends_with_zero = false;

  void Declare(Command& command) {
    command
        .NumberOption("--limit", "N", limit, 1, PhotoSearch::kMost,
                      "At most so many photos and folders each (100)")
        .Filter(filter)
        .Flag("-0,--null", ends_with_zero, "Write paths only, each ended by a zero byte");
  }

  /// Answers what `search` puts into the PhotoSearch.
  template <class Body>
  ExitCode Answer(Invocation& invocation, Body search) const {
    Library library = invocation.OpenLibraryToRead();
    CataloguePath paths(library);
    PhotoSearch found(library, paths, filter, limit);
    search(found);
    return ends_with_zero ? WritePaths(invocation, found, paths) : Write(invocation, found, paths);
  }

 private:
  static ExitCode Write(Invocation& invocation, const PhotoSearch& found, CataloguePath& paths) {
    Json folders = Json::array(), photos = Json::array();
    Table rows = PhotoTable();
    for (const uint32_t folder : found.Folders()) {
      const std::string path = paths.NameOf(folder);
      folders.push_back({{"id", static_cast<int32_t>(folder)}, {"path", path}});
      rows.Add({"", "", "", path + "/"});
    }
    for (const PHOTOINFO& photo : found.Photos()) {
      photos.push_back(PhotoAsJson(photo, paths.NameOf(photo.dwFolderID)));
      AddPhoto(photo, paths.NameOf(photo), rows);
    }
    return invocation.Write(
        {{{"folders", std::move(folders)}, {"photos", std::move(photos)}}, rows.Text()});
  }

  static ExitCode WritePaths(Invocation& invocation, const PhotoSearch& found,
                             CataloguePath& paths) {
    std::string text;
    for (const uint32_t folder : found.Folders()) text += paths.NameOf(folder) + '\0';
    for (const PHOTOINFO& photo : found.Photos()) text += paths.NameOf(photo) + '\0';
    return invocation.WriteBytes({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  }
};

struct Find {
  std::vector<std::string> words;
  SearchOptions options;

  void Declare(Command& command) {
    command.Words("TEXT", words, "What the name has in it; of several words all, in any order");
    options.Declare(command);
    command.Notes(
        "Consonants only (\"ㅈㅈㄷ\") mean syllables that begin with them. A filter other than "
        "--folder\n"
        "leaves folders out.");
  }

  ExitCode Run(Invocation& invocation) const {
    return options.Answer(invocation, [&](PhotoSearch& search) {
      search.AddFoldersNamed(words);
      search.AddPhotosNamed(words);
    });
  }
};

/// The photos of one order.
template <int (CRkSearchDBManager::*search_in_order)(vdstomgr::PhotoArray& photos, int max)>
struct FirstOf {
  SearchOptions options;

  void Declare(Command& command) { options.Declare(command); }

  ExitCode Run(Invocation& invocation) const {
    return options.Answer(invocation, [](PhotoSearch& search) {
      search.AddPhotos([](auto& database, auto& photos, int max) {
        return (database.*search_in_order)(photos, max);
      });
    });
  }
};

}  // namespace

void AddFind(CommandGroup& tool) {
  tool.Add<Find>("find", "Find photos and folders by name");
  tool.Add<FirstOf<&CRkSearchDBManager::SearchRecentUpload>>("recent", "List what came last");
  tool.Add<FirstOf<&CRkSearchDBManager::SearchBigFile>>("biggest", "List the largest files");
}

}  // namespace vdsto
