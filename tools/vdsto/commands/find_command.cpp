#include <functional>

#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/cli/photo_text.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/selection/photo_filter.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr int kMost = 1'000'000'000;
/// Photos in the trash or filtered out leave room: so many times more are asked for then.
constexpr int kMoreEachTime = 4;

/// What all searches take.
struct SearchOptions {
  FilterWords filter;
  int limit = 100;
  bool ends_with_zero = false;

  void Declare(Command& command) {
    command
        .NumberOption("--limit", "N", limit, 1, kMost,
                      "At most so many photos and folders each (100)")
        .Option("--since", "DAY", filter.since, "Taken on that day, month or year, or later")
        .Option("--until", "DAY", filter.until, "Taken on that day, month or year, or earlier")
        .Option("--camera", "TEXT", filter.camera, "With a camera whose model has this in its name")
        .NumberOption("--rating", "N", filter.rating, 1, 5, "Rated so high at least")
        .Option("--folder", "FOLDER", filter.folder, "In that folder or below it")
        .Flag("-0,--null", ends_with_zero, "Write paths only, each ended by a zero byte");
  }
};

/// One search of a library and its answer.
class Search {
 public:
  using PhotoSource = std::function<int(CRkSearchDBManager&, vdstomgr::PhotoArray&, int max)>;

  Search(Library& library, const SearchOptions& options)
      : library_(library),
        options_(options),
        paths_(library),
        filter_(options.filter, library, paths_) {
    library_.CallSearch([](auto& copy) { copy.Prepare(); });
  }

  void AddPhotos(const PhotoSource& source) {
    for (int asked = options_.limit;;
         asked = asked < kMost / kMoreEachTime ? asked * kMoreEachTime : kMost) {
      vdstomgr::PhotoArray found;
      library_.CallSearch([&](auto& copy) { source(copy.Database(), found, asked); });
      TakePassing(found);
      if (photos_.GetSize() == options_.limit || found.GetSize() < asked || asked == kMost) return;
    }
  }

  void AddFolders(const char* text, bool by_initials) {
    vdstomgr::FolderArray found;
    library_.CallSearch([&](auto& copy) {
      by_initials ? vdstomgr::SearchFolderNameByInitials(copy.Database(), text, found, kMost)
                  : copy.Database().SearchFolderName(text, found, kMost);
    });
    for (const FOLDERINFO& folder : found) {
      if (folders_.size() == size_t(options_.limit)) return;
      if (filter_.PassesFolder(folder.dwFolderID)) folders_.push_back(folder.dwFolderID);
    }
  }

  ExitCode Write(Invocation& invocation) {
    if (options_.ends_with_zero) return WritePaths(invocation);
    Json folders = Json::array(), photos = Json::array();
    Table rows = PhotoTable();
    for (const uint32_t folder : folders_) {
      const std::string path = paths_.NameOf(folder);
      folders.push_back({{"id", static_cast<int32_t>(folder)}, {"path", path}});
      rows.Add({"", "", "", path + "/"});
    }
    for (const PHOTOINFO& photo : photos_) {
      photos.push_back(PhotoAsJson(photo, paths_.NameOf(photo.dwFolderID)));
      AddPhoto(photo, paths_.NameOf(photo), rows);
    }
    return invocation.Write(
        {{{"folders", std::move(folders)}, {"photos", std::move(photos)}}, rows.Text()});
  }

 private:
  /// The copy knows names, sizes and dates; everything else the catalogue.
  void TakePassing(const vdstomgr::PhotoArray& found) {
    photos_.RemoveAll();
    for (const PHOTOINFO& copied : found) {
      if (photos_.GetSize() == options_.limit) return;
      const auto photo = library_.Photo(copied.szGUID);
      if (photo && filter_.Passes(*photo)) photos_.Add(*photo);
    }
  }

  ExitCode WritePaths(Invocation& invocation) {
    std::string text;
    for (const uint32_t folder : folders_) text += paths_.NameOf(folder) + '\0';
    for (const PHOTOINFO& photo : photos_) text += paths_.NameOf(photo) + '\0';
    return invocation.WriteBytes({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  }

  Library& library_;
  const SearchOptions& options_;
  CataloguePath paths_;
  PhotoFilter filter_;
  std::vector<uint32_t> folders_;
  vdstomgr::PhotoArray photos_;
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
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : " ") + Composed(word);
    Library library = invocation.OpenLibrary();
    Search search(library, options);
    const bool by_initials = vdstomgr::IsInitials(text.c_str());
    FilterWords beside_folder = options.filter;
    beside_folder.folder.clear();
    if (beside_folder.IsEmpty()) search.AddFolders(text.c_str(), by_initials);
    search.AddPhotos([&](auto& database, auto& photos, int max) {
      return by_initials ? vdstomgr::SearchFileNameByInitials(database, text.c_str(), photos, max)
                         : database.SearchFileName(text.c_str(), photos, max);
    });
    return search.Write(invocation);
  }
};

/// The photos of one order.
template <int (CRkSearchDBManager::*search_in_order)(vdstomgr::PhotoArray& photos, int max)>
struct FirstOf {
  SearchOptions options;

  void Declare(Command& command) { options.Declare(command); }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    Search search(library, options);
    search.AddPhotos([](auto& database, auto& photos, int max) {
      return (database.*search_in_order)(photos, max);
    });
    return search.Write(invocation);
  }
};

}  // namespace

void AddFind(CommandGroup& tool) {
  tool.Add<Find>("find", "Find photos and folders by name");
  tool.Add<FirstOf<&CRkSearchDBManager::SearchRecentUpload>>("recent", "List what came last");
  tool.Add<FirstOf<&CRkSearchDBManager::SearchBigFile>>("biggest", "List the largest files");
}

}  // namespace vdsto
