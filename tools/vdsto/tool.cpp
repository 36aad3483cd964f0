#include "tools/vdsto/tool.h"

#include <CLI/CLI.hpp>
#include <array>
#include <iostream>

#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

constexpr std::array kGroups{
    &AddImport,   &AddWatch,   &AddTree,       &AddList,    &AddInfo,    &AddMissing, &AddProblems,
    &AddFind,     &AddTagged,  &AddThumb,      &AddGallery, &AddRate,    &AddTag,     &AddTitle,
    &AddDescribe, &AddRotate,  &AddFlag,       &AddCamera,  &AddTrash,   &AddUpload,  &AddSync,
    &AddSyncList, &AddNotify,  &AddMakeFolder, &AddMove,    &AddFolder,  &AddRoom,    &AddAlbum,
    &AddStat,     &AddStore,   &AddCheck,      &AddSql,     &AddReindex, &AddReset,   &AddBackup,
    &AddRestore,  &AddPassword};

constexpr const char* kExitCodes = R"(Exit codes:
  0    done; broken pictures are kept and named, and are no failure
  1    something unexpected
  2    the command line, or no password to be had
  3    the library, its catalogue or its image store cannot be opened
  4    wrong password
  5    reading or writing the catalogue or the image store failed
  6    what was asked for is not there or cannot be read
  7    check has found something wrong, or the image store or a backup has faults
  8    not done, so that nothing is lost
  9    done in part: a folder to import could not be read, a file not be uploaded or backed up
  10   the target of an upload or backup cannot be reached, does not let in or is full
  11   an import could not read or store some files; the others are done
  130  interrupted; what was done until then is kept)";

class CommandLine {
 public:
  CommandLine() {
    app_.require_subcommand(1);
    app_.fallthrough();
    app_.footer(kExitCodes);
    app_.get_formatter()->label("REQUIRED", "");
    app_.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app_.set_version_flag("--version", "vdsto " VDSTO_VERSION, "Print the version and exit");
    Command(app_).Option("--library", "DIR", options_.library_folder,
                         "The library's folder (else $VDSTO_LIBRARY, else your data directory)");
    auto* prompt =
        app_.add_flag("--password", options_.password.prompt, "Ask for the catalogue's password");
    Command(app_).Option("--password-file", "FILE", options_.password.file,
                         "Read it from the file's first line (else $VDSTO_PASSWORD)");
    app_.get_option("--password-file")->excludes(prompt);
    app_.add_flag("--json", options_.json, "Answer in JSON, for programs");
    CommandGroup tool(app_, chosen_);
    for (const auto add : kGroups) add(tool);
  }

  int Run(int argc, const char* const* argv) {
    app_.parse(ShieldedWords(argc, argv));
    Invocation invocation(options_, std::cout);
    return static_cast<int>(chosen_(invocation));
  }

  /// Answers --help and --version, or throws ToolError about the words of the command line.
  int Explain(const CLI::ParseError& request) const {
    const bool is_question = request.get_exit_code() == 0;
    if (is_question && (!WantsCommand() || app_.remaining(true).empty()))
      return app_.exit(request, std::cout, std::cerr);
    throw ToolError(ExitCode::kUsage, Complaint(request) + " (see " + ChosenName() + " --help)");
  }

 private:
  /// The innermost command or group that the user named.
  const CLI::App& Innermost() const {
    const CLI::App* app = &app_;
    while (!app->get_subcommands().empty()) app = app->get_subcommands().front();
    return *app;
  }

  std::string ChosenName() const {
    std::string name;
    for (const CLI::App* app = &Innermost(); app != nullptr; app = app->get_parent())
      name.insert(0, app->get_name() + (name.empty() ? "" : " "));
    return name;
  }

  bool WantsCommand() const { return Innermost().get_require_subcommand_min() > 0; }

  std::string Complaint(const CLI::ParseError& request) const {
    const auto words = app_.remaining(true);
    const bool lacks_something = dynamic_cast<const CLI::RequiredError*>(&request) != nullptr;
    if (words.empty() && lacks_something && WantsCommand()) return "a command is missing";
    if (words.empty()) return WithoutShields(request.what());
    const std::string word = WithoutShields(words.front());
    const char* what = word.starts_with('-') ? "unknown option '"
                       : WantsCommand()      ? "unknown command '"
                                             : "unexpected word '";
    return what + word + "'";
  }

  CLI::App app_{"vdsto keeps a catalogue of your pictures.", "vdsto"};
  GlobalOptions options_;
  CommandGroup::Action chosen_;
};

int Fail(ExitCode code, const std::string& message) {
  std::cerr << "vdsto: " << Printable(message) << std::endl;
  return static_cast<int>(code);
}

int RunCommandLine(int argc, const char* const* argv) {
  CommandLine command_line;
  try {
    return command_line.Run(argc, argv);
  } catch (const CLI::ParseError& request) {
    return command_line.Explain(request);
  }
}

}  // namespace

int RunTool(int argc, const char* const* argv) {
  InitialiseCatalogueLibrary();
  try {
    const int code = RunCommandLine(argc, argv);
    std::cout.flush();
    return std::cout ? code : Fail(ExitCode::kUnexpected, "the answer could not be written");
  } catch (const ToolError& error) {
    return Fail(error.Code(), error.what());
  } catch (const std::exception& error) {
    return Fail(ExitCode::kUnexpected, error.what());
  }
}

}  // namespace vdsto
