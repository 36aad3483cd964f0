#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/cli/photo_text.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/photo_texts.h"
#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/selection/tags.h"

namespace vdsto {
namespace {

constexpr size_t kLabelColumns = 20;

struct Info {
  std::string photo;

  void Declare(Command& command) { command.Photo(photo); }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    PhotoTexts& texts = library.TextsOfPhotos();
    CataloguePath paths(library);
    const PHOTOINFO info = paths.Photo(photo);
    const Json fields = PhotoAsJson(info, paths.NameOf(info.dwFolderID));
    Facts facts(kLabelColumns);
    for (const auto& [key, value] : fields.items()) {
      const bool is_guess = key == "shot" && HasGuessedDate(info);
      facts.Add(key, is_guess ? Fact(value, value.get<std::string>() + "? (the file's time)")
                              : Fact(value));
      if (key == "name")
        AddWords(texts.Of(info.szGUID), TagsOfPhotos(library).Of(info.szGUID), facts);
    }
    AddPhotoFacts(library.FactsOfPhotos().Of(info.szGUID), facts);
    return invocation.Write(facts);
  }

 private:
  static void AddWords(const PhotoTexts::Texts& texts, const std::vector<TAGINFO>& tags,
                       Facts& facts) {
    const auto known = [](const std::string& text) { return text.empty() ? Json() : Json(text); };
    facts.Add("title", known(texts.title))
        .Add("description", known(texts.description))
        .Add("tags", TagsFact(tags));
  }
};

}  // namespace

void AddInfo(CommandGroup& tool) {
  tool.Add<Info>("info", "Show everything about one photo");
}

}  // namespace vdsto
