#include <limits>

#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/photo_texts.h"
#include "tools/vdsto/selection/new_text.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(An empty text ('') takes away what is there. Before a text that is there goes, you are asked. vdsto
info shows the text of a photo.)";

/// A text of photos that users write.
struct TextField {
  const char* noun;
  const char* word;
  const char* participle;
  size_t most_characters;
  std::string PhotoTexts::Texts::*text;
  bool (CRkPhotoDBManager::*set)(const CStringArray& guids, const char* text);
};

constexpr TextField kTitle{
    "title", "TITLE", "titled", 200, &PhotoTexts::Texts::title, &CRkPhotoDBManager::SetTitle};
constexpr TextField kDescription{"description",
                                 "TEXT",
                                 "described as",
                                 std::numeric_limits<size_t>::max(),
                                 &PhotoTexts::Texts::description,
                                 &CRkPhotoDBManager::SetDesc};

template <const TextField& field>
struct SetText {
  std::string text;
  PhotoWords photos;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Word(field.word, text, "The text that all of the photos get")
        .Photos(photos)
        .FinalChange(change)
        .Notes(kNotes);
  }

  ExitCode Run(Invocation& invocation) const {
    const std::string wanted = NewText(field.noun, text, field.most_characters);
    Library library = invocation.OpenLibrary();
    PhotoTexts& texts = library.TextsOfPhotos();
    const auto text_of = [&](const PHOTOINFO& photo) { return texts.Of(photo.szGUID).*field.text; };
    const auto is_done = [&](const PHOTOINFO& photo) { return text_of(photo) == wanted; };
    const auto replaces = [&](const PHOTOINFO& photo) { return !text_of(photo).empty(); };
    const auto set = [&](const CStringArray& guids) {
      library.Call([&](auto& catalogue) { return (catalogue.*field.set)(guids, wanted.c_str()); });
    };
    PhotoChange plan{.participle = Participle(wanted), .is_done = is_done, .apply = set};
    plan.details = {{field.noun, wanted}};
    plan.is_final = wanted.empty();
    if (!plan.is_final) plan.replaces = replaces;
    return ChangePhotos(invocation, library, photos, change, plan);
  }

 private:
  static std::string Participle(const std::string& wanted) {
    return wanted.empty() ? std::string("left without a ") + field.noun
                          : std::string(field.participle) + " '" + Printable(wanted) + "'";
  }
};

}  // namespace

void AddTitle(CommandGroup& tool) {
  tool.Add<SetText<kTitle>>("title", "Give photos a title");
}

void AddDescribe(CommandGroup& tool) {
  tool.Add<SetText<kDescription>>("describe", "Give photos a description");
}

}  // namespace vdsto
