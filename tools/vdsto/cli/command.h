#pragma once
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tools/vdsto/selection/folder_selection.h"
#include "tools/vdsto/selection/photo_filter.h"
#include "tools/vdsto/selection/photo_selection.h"
#include "tools/vdsto/selection/trash_selection.h"
#include "tools/vdsto/tool_error.h"

namespace CLI {
class App;
}

/// How commands come to the command line: each is a struct of its options with what it takes
/// (Declare) and what it does (Run) beside them.
namespace vdsto {

class Invocation;
struct ChangeOptions;

/// Declares what a command takes. What several commands take has a method of its own at the end,
/// so that it reads the same everywhere. Bound variables must live as long as the command.
class Command {
 public:
  explicit Command(CLI::App& app) : app_(app) {}

  /// One word that must be given; `name` stands for it in the help.
  Command& Word(const char* name, std::string& value, const char* help);
  Command& OptionalWord(const char* name, std::string& value, const char* help);
  /// One word or more; none is enough unless `is_required`.
  Command& Words(const char* name, std::vector<std::string>& values, const std::string& help,
                 bool is_required = true);
  /// A word that is a whole number between `least` and `most`.
  Command& Number(const char* name, int& value, int least, int most, const char* help);
  /// An option with a value, "-o,--output"; `type` stands for the value in the help.
  Command& Option(const char* names, const char* type, std::string& value, const char* help);
  /// The same, and may be given several times.
  Command& Option(const char* names, const char* type, std::vector<std::string>& values,
                  const char* help);
  Command& RequiredOption(const char* names, const char* type, std::string& value,
                          const char* help);
  /// An option whose value is a whole number between `least` and `most`.
  Command& NumberOption(const char* names, const char* type, int& value, int least, int most,
                        const char* help);
  Command& Flag(const char* names, bool& value, const char* help);
  /// Paragraphs below the help.
  Command& Notes(const std::string& text);

  /// Exactly one photo; CataloguePath::Photo knows which.
  Command& Photo(std::string& word);
  Command& Photos(PhotoWords& words, bool is_required = true);
  Command& Folders(FolderWords& words);
  /// A part of a list: from which position on, counted from 1, and how much of it.
  Command& Page(int& first, int& count);
  /// What narrows a search.
  Command& Filter(FilterWords& filter);
  /// Exactly one tag, or one that is to be made.
  Command& Tag(std::string& word);
  Command& Tags(WordList& words);
  /// Names of something that may be new.
  Command& Names(WordList& words, const std::string& what);
  /// Photos in the trash; unless `is_required`, none means all.
  Command& TrashedPhotos(TrashWords& words, bool is_required);
  /// Catalogue paths of folders that may not be there yet.
  Command& NewFolders(WordList& paths);
  /// Rooms or albums: those that are to be, and those that are there.
  Command& NewNames(WordList& names);
  Command& Rooms(WordList& names);
  Command& Albums(WordList& paths);
  /// What to move, and the last word where to.
  Command& SourcesAndTarget(WordList& words);
  /// --dry-run, for commands that carry out a ChangePlan.
  Command& Change(ChangeOptions& options);
  /// The same and --yes, for commands that ask before they delete for good.
  Command& FinalChange(ChangeOptions& options);

 private:
  Command& List(WordList& list, const char* name, const std::string& help, bool is_required = true);

  CLI::App& app_;
};

/// Commands under one name: the tool's own, or those of `vdsto store`.
class CommandGroup {
 public:
  using Action = std::function<ExitCode(Invocation&)>;

  /// `chosen` becomes the action of the command that the user names.
  CommandGroup(CLI::App& app, Action& chosen) : app_(app), chosen_(chosen) {}

  /// Adds the command that `Options` is: `void Declare(Command&)`, which may be missing, says what
  /// it takes, and `ExitCode Run(Invocation&) const` does it.
  template <class Options>
  void Add(const char* name, const char* help) {
    const auto options = std::make_shared<Options>();
    CLI::App& app = AddApp(name, help);
    if constexpr (requires(Command & command) { options->Declare(command); }) {
      Command command(app);
      options->Declare(command);
    }
    Bind(app, [options](Invocation& invocation) { return options->Run(invocation); });
  }

  CommandGroup AddGroup(const char* name, const char* help, const std::string& notes);

 private:
  CLI::App& AddApp(const char* name, const char* help);
  void Bind(CLI::App& app, Action action);

  CLI::App& app_;
  Action& chosen_;
};

/// The words of a command line, last first, in a form that the parser hands on as they are: it
/// takes a list for "[a,b]" and nothing for "{}", and both are good names of folders.
std::vector<std::string> ShieldedWords(int argc, const char* const* argv);
/// A parser's message without what shields words.
std::string WithoutShields(std::string message);

}  // namespace vdsto
