#include "tools/vdsto/cli/command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>

#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr char kShield = '\x01';
constexpr const char* kFooter =
    "--library, --password, --json and the exit codes are the same for every command: "
    "see vdsto --help.";

constexpr const char* kPhotoNotes =
    R"(A PHOTO is a file of this computer, a catalogue path, a GUID, a file name that only one photo has,
or a pattern of catalogue paths: in '사진/2024*/*.jpg' * is any text, ? one character, [a-f] one of
these, and ** any number of folders. A folder stands for the photos in it; end a pattern with / when it
means folders. The word - stands for a list of names on standard input.)";
constexpr const char* kFolderNotes =
    R"(A FOLDER is a catalogue path, a pattern of such paths ('사진/2024*', where ** is any number of
folders), or a folder of this computer that was imported. The word - stands for a list of names on
standard input.)";

std::string Unshielded(const std::string& word) {
  return word.starts_with(kShield) ? word.substr(1) : word;
}

CLI::Option* AddTexts(CLI::App& app, const char* names, std::vector<std::string>& values,
                      const std::string& help) {
  const auto take = [&values](const std::vector<std::string>& words) {
    values.clear();
    std::transform(words.begin(), words.end(), std::back_inserter(values), &Unshielded);
  };
  return app.add_option_function<std::vector<std::string>>(names, take, help);
}

CLI::Option* AddText(CLI::App& app, const char* names, std::string& value,
                     const std::string& help) {
  return app
      .add_option_function<std::string>(
          names, [&value](const std::string& word) { value = Unshielded(word); }, help)
      ->type_name("");
}

int NumberFrom(const char* name, const std::string& word, int least, int most) {
  int number = 0;
  const char* end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, number);
  if (error == std::errc() && stop == end && number >= least && number <= most) return number;
  throw CLI::ValidationError(std::string(name) + " is a number from " + std::to_string(least) +
                             " to " + std::to_string(most) + ", not '" + Printable(word) + "'");
}

CLI::Option* AddNumber(CLI::App& app, const char* name, int& value, int least, int most,
                       const std::string& help) {
  return app.add_option_function<std::string>(
      name, [=, &value](const std::string& word) { value = NumberFrom(name, word, least, most); },
      help);
}

}  // namespace

Command& Command::Word(const char* name, std::string& value, const char* help) {
  AddText(app_, name, value, help)->required();
  return *this;
}

Command& Command::OptionalWord(const char* name, std::string& value, const char* help) {
  AddText(app_, name, value, help);
  return *this;
}

Command& Command::Words(const char* name, std::vector<std::string>& values, const std::string& help,
                        bool is_required) {
  AddTexts(app_, name, values, help)->type_name("")->required(is_required);
  return *this;
}

Command& Command::Option(const char* names, const char* type, std::vector<std::string>& values,
                         const char* help) {
  AddTexts(app_, names, values, help)->type_name(type)->allow_extra_args(false);
  return *this;
}

Command& Command::Number(const char* name, int& value, int least, int most, const char* help) {
  AddNumber(app_, name, value, least, most, help)->type_name("")->required();
  return *this;
}

Command& Command::Option(const char* names, const char* type, std::string& value,
                         const char* help) {
  AddText(app_, names, value, help)->type_name(type);
  return *this;
}

Command& Command::NumberOption(const char* names, const char* type, int& value, int least, int most,
                               const char* help) {
  AddNumber(app_, names, value, least, most, help)->type_name(type);
  return *this;
}

Command& Command::RequiredOption(const char* names, const char* type, std::string& value,
                                 const char* help) {
  AddText(app_, names, value, std::string(help) + "; needed")->type_name(type)->required();
  return *this;
}

Command& Command::Flag(const char* names, bool& value, const char* help) {
  app_.add_flag(names, value, help);
  return *this;
}

Command& Command::Notes(const std::string& text) {
  std::string footer = app_.get_footer();
  footer.insert(footer.rfind(kFooter), text + "\n\n");
  app_.footer(footer);
  return *this;
}

Command& Command::Photo(std::string& word) {
  return Word(
      "PHOTO", word,
      "A file of this computer, a catalogue path, a GUID, or a name that only one photo has");
}

Command& Command::Photos(PhotoWords& words, bool is_required) {
  return List(words, "PHOTO", "The photos, named as said below", is_required)
      .Flag("-r,--recursive", words.recursive, "With a folder, the photos of all folders below too")
      .Notes(kPhotoNotes);
}

Command& Command::Page(int& first, int& count) {
  return NumberOption("--from", "POSITION", first, 1, INT32_MAX, "Begin at this position")
      .NumberOption("--count", "NUMBER", count, 1, INT32_MAX, "Show so many at most");
}

Command& Command::Filter(FilterWords& filter) {
  return Option("--since", "DAY", filter.since, "Taken on that day, month or year, or later")
      .Option("--until", "DAY", filter.until, "Taken on that day, month or year, or earlier")
      .Option("--camera", "TEXT", filter.camera, "With a camera whose model has this in its name")
      .NumberOption("--rating", "N", filter.rating, 1, 5, "Rated so high at least")
      .Option("--folder", "FOLDER", filter.folder, "In that folder or below it");
}

Command& Command::Folders(FolderWords& words) {
  return List(words, "FOLDER", "The folders, named as said below").Notes(kFolderNotes);
}

Command& Command::Tag(std::string& word) {
  return Word("TAG", word, "The tag's name; case and blanks at the ends do not count");
}

Command& Command::Tags(WordList& words) {
  return List(words, "TAG",
              "Names of tags, patterns of them ('여행*'), or - for a list on standard input");
}

Command& Command::Names(WordList& words, const std::string& what) {
  return List(words, "NAME", what + ", or - for a list on standard input");
}

Command& Command::TrashedPhotos(TrashWords& words, bool is_required) {
  return List(words, "PHOTO", "The photos in the trash, named as said below", is_required);
}

Command& Command::NewFolders(WordList& paths) {
  return List(paths, "FOLDER", "Catalogue paths of the folders, or - for a list on standard input");
}

Command& Command::NewNames(WordList& names) {
  return List(names, "NAME", "What to create, or - for a list on standard input");
}

Command& Command::Rooms(WordList& names) {
  return List(names, "ROOM", "The rooms' names, or - for a list on standard input");
}

Command& Command::Albums(WordList& paths) {
  return List(paths, "ALBUM", "The albums, or - for a list on standard input");
}

Command& Command::SourcesAndTarget(WordList& words) {
  return List(words, "SOURCE... TARGET", "What to move, and where to, as said below");
}

Command& Command::Change(ChangeOptions& options) {
  return Flag("-n,--dry-run", options.dry_run, "Only tell what would change");
}

Command& Command::FinalChange(ChangeOptions& options) {
  return Change(options).Flag("-y,--yes", options.yes, "Do not ask");
}

Command& Command::List(WordList& list, const char* name, const std::string& help,
                       bool is_required) {
  return Words(name, list.words, help, is_required)
      .Flag("-0,--null", list.ends_with_zero,
            "With -: each name ends with a zero byte, as from find -print0");
}

CommandGroup CommandGroup::AddGroup(const char* name, const char* help, const std::string& notes) {
  CLI::App& app = AddApp(name, help);
  app.require_subcommand(1);
  Command(app).Notes(notes);
  return {app, chosen_};
}

CLI::App& CommandGroup::AddApp(const char* name, const char* help) {
  CLI::App* app = app_.add_subcommand(name, help)->fallthrough()->group("Commands");
  app->footer(kFooter);
  return *app;
}

void CommandGroup::Bind(CLI::App& app, Action action) {
  app.callback([this_chosen = &chosen_, action = std::move(action)] { *this_chosen = action; });
}

std::vector<std::string> ShieldedWords(int argc, const char* const* argv) {
  constexpr std::string_view kSpecial{"[{+\x01"};
  std::vector<std::string> words;
  for (int i = argc - 1; i > 0; --i) {
    const std::string word = argv[i];
    const bool is_special = !word.empty() && kSpecial.find(word.front()) != std::string::npos;
    words.push_back(is_special ? kShield + word : word);
  }
  return words;
}

std::string WithoutShields(std::string message) {
  std::erase(message, kShield);
  return message;
}

}  // namespace vdsto
