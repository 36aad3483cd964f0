#include <sys/stat.h>

#include <algorithm>
#include <map>

#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/photo_text.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/trash_bin.h"
#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kMissingNotes =
    R"(What the last imports have found. A file that comes back, or is found under another name or in
another folder, belongs to its photo again at the next import; vdsto forget puts photos whose file will not
come back into the trash.)";
constexpr const char* kForgetNotes =
    R"(Only photos that vdsto missing lists; without a PHOTO, all of them. A photo whose file is there again is
left alone. vdsto trash restore brings a photo back, vdsto trash empty deletes it for good.)";

struct MissingPhoto {
  PHOTOINFO photo;
  PhotoFacts facts;
};

std::vector<MissingPhoto> MissingPhotos(Library& library) {
  std::vector<MissingPhoto> missing;
  for (PhotoFacts& facts : library.FactsOfPhotos().Gone()) {
    const auto photo = library.Photo(facts.guid);
    if (photo && !IsTrashFolder(photo->dwFolderID)) missing.push_back({*photo, std::move(facts)});
  }
  std::sort(missing.begin(), missing.end(), [](const MissingPhoto& a, const MissingPhoto& b) {
    return a.facts.path < b.facts.path;
  });
  return missing;
}

struct Missing {
  bool ends_with_zero = false;

  void Declare(Command& command) {
    command.Flag("-0,--null", ends_with_zero, "Write paths only, each ended by a zero byte")
        .Notes(kMissingNotes);
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    CataloguePath paths(library);
    Json photos = Json::array();
    Table rows({"gone", "size", "name"});
    std::string names;
    for (const auto& [photo, facts] : MissingPhotos(library)) {
      photos.push_back(PhotoAsJson(photo, paths.NameOf(photo.dwFolderID)));
      photos.back()["original"] = UnlimitedLocationOf(facts.path);
      photos.back()["gone_since"] = TimeFact(facts.gone_since).json;
      rows.Add({TimeFact(facts.gone_since), SizeFact(photo.FileSize), paths.NameOf(photo)});
      names += paths.NameOf(photo) + '\0';
    }
    if (!ends_with_zero) return invocation.Write(Answer{std::move(photos), rows.Text()});
    return invocation.WriteBytes({reinterpret_cast<const uint8_t*>(names.data()), names.size()});
  }
};

struct Forget {
  PhotoWords words;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Photos(words, false).Change(change).Notes(kForgetNotes);
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    std::map<std::string, MissingPhoto> missing;
    for (MissingPhoto& photo : MissingPhotos(library)) missing.emplace(photo.facts.guid, photo);
    CataloguePath paths(library);
    ChangePlan plan{"photo", "put into the trash"};
    CStringArray guids;
    for (const std::string& guid : Chosen(library, missing)) {
      const auto& [photo, facts] = missing.at(guid);
      struct stat status {};
      if (lstat(facts.path.c_str(), &status) == 0) continue;
      plan.Add(guid, paths.NameOf(photo));
      guids.Add(guid.c_str());
    }
    return CarryOut(invocation, plan, change, [&] { PutIntoTrash(library, guids); });
  }

 private:
  std::vector<std::string> Chosen(Library& library,
                                  const std::map<std::string, MissingPhoto>& missing) const {
    std::vector<std::string> guids;
    if (words.words.empty()) {
      for (const auto& [guid, photo] : missing) guids.push_back(guid);
      return guids;
    }
    for (const CString& guid : SelectPhotos(library, words)) {
      if (!missing.contains(guid.Str()))
        throw ToolError(ExitCode::kRefused, NameOf(library, guid) +
                                                " is not missing: vdsto trash put puts any photo "
                                                "into the trash");
      guids.push_back(guid.Str());
    }
    return guids;
  }

  static std::string NameOf(Library& library, const CString& guid) {
    const auto photo = library.Photo(guid.Str());
    return photo ? Printable(CataloguePath(library).NameOf(*photo)) : guid.Str();
  }
};

}  // namespace

void AddMissing(CommandGroup& tool) {
  tool.Add<Missing>("missing", "List the photos whose file is no longer on disk");
  tool.Add<Forget>("forget", "Put photos whose file is gone into the trash");
}

}  // namespace vdsto
