#include "tools/vdsto/tool.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <iostream>

#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/password.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

constexpr const char* kExitCodes = R"(Exit codes:
  0    done; broken pictures are kept and named, and are no failure
  1    something unexpected
  2    the command line, or no password to be had
  3    the library, its catalogue or its image store cannot be opened
  4    wrong password
  5    reading or writing the catalogue or the image store failed
  6    what was asked for is not there
  7    the image store has faults
  130  interrupted; what was done until then is kept)";

constexpr const char* kImportNotes =
    R"(Running it again brings the catalogue up to date: unchanged files are passed over, changed ones
updated, missing thumbnails made. Names that begin with a dot are passed over; links to folders are
followed unless they lead into or above the imported tree. Folders without pictures are not mirrored.)";

constexpr const char* kStoreNotes =
    R"(The store is images.pdb and images.pdx in the library's folder. One process at a time uses it:
repair and compact wait for a running import to end, sync fails then. stat, verify and vdsto thumb
read beside it at any time. What the store loses, the next import makes again.)";

std::string WithExitCodes(const char* notes) {
  return std::string(notes) + "\n\n" + kExitCodes;
}

class CommandLine {
 public:
  CommandLine() {
    app_.require_subcommand(1);
    app_.fallthrough();
    app_.footer(kExitCodes);
    app_.add_option("--library", folder_,
                    "The library's folder (else $VDSTO_LIBRARY, else your data directory)")
        ->type_name("DIR");
    auto* prompt =
        app_.add_flag("--password", password_.prompt, "Ask for the catalogue's password");
    app_.add_option("--password-file", password_.file,
                    "Read it from the file's first line (else $VDSTO_PASSWORD)")
        ->type_name("FILE")
        ->excludes(prompt);
    app_.add_flag("--json", json_, "Answer in JSON, for programs");
    AddCommands();
  }

  int Run(int argc, const char* const* argv) {
    app_.parse(argc, argv);
    return static_cast<int>(command_());
  }

  int Explain(const CLI::ParseError& request) const {
    return app_.exit(request, std::cout, std::cerr);
  }

  /// What was wrong with the words of the command line.
  std::string Complaint(const CLI::ParseError& error) const {
    const auto words = app_.remaining(true);
    const bool wants_command = dynamic_cast<const CLI::RequiredError*>(&error) != nullptr;
    if (!wants_command || words.empty()) return error.what();
    const bool is_option = words.front().starts_with('-');
    return (is_option ? "unknown option '" : "unknown command '") + Printable(words.front()) + "'";
  }

 private:
  using Reader = std::function<void(Library&, OutputForm, std::ostream&)>;
  using StoreTask = ExitCode (*)(const LibraryOptions&, OutputForm, std::ostream&);

  void AddCommands() {
    AddImport();
    AddReading("tree", "Show the folders and how many photos each holds", &RunTree);
    AddReading("ls", "List a folder of the catalogue", [this](auto& library, auto form, auto& out) {
      RunList(library, subject_, form, out);
    })->add_option("PATH", subject_, "The folder, from the personal folder down");
    AddPhoto(AddReading(
        "info", "Show everything about one photo",
        [this](auto& library, auto form, auto& out) { RunInfo(library, subject_, form, out); }));
    AddThumb();
    AddReading("stat", "Show totals", &RunStat);
    AddStore();
  }

  void AddImport() {
    auto* import = app_.add_subcommand("import", "Mirror folders of pictures into the catalogue");
    import->footer(WithExitCodes(kImportNotes));
    import->add_option("FOLDER", import_folders_, "Folders to import")->required();
    Bind(import, [this] {
      const bool done = RunImport(Options(), import_folders_, Form(), std::cout);
      return done ? ExitCode::kOk : ExitCode::kInterrupted;
    });
  }

  void AddThumb() {
    auto* thumb = AddReading("thumb", "Write the thumbnail of one photo to a JPEG file",
                             [this](auto& library, auto form, auto& out) {
                               RunThumb(library, subject_, target_, form, out);
                             });
    AddPhoto(thumb);
    thumb->add_option("-o,--output", target_, "The file to write, or - for standard output")
        ->type_name("FILE")
        ->required();
  }

  void AddStore() {
    auto* store =
        app_.add_subcommand("store", "Look after the image store, which holds thumbnails");
    store->require_subcommand(1);
    store->fallthrough();
    store->footer(WithExitCodes(kStoreNotes));
    const auto add = [&](const char* name, const char* help, StoreTask task) {
      Bind(store->add_subcommand(name, help)->fallthrough(),
           [this, task] { return task(Options(), Form(), std::cout); });
    };
    add("stat", "Read all of it and show totals", &RunStoreStat);
    add("verify", "Check every image and name what is wrong", &RunStoreVerify);
    add("repair", "Make a new index from the images; the old one is kept", &RunStoreRepair);
    add("compact", "Drop images that no photo names, and give their space back", &RunStoreCompact);
    add("sync", "Bring everything to the device, to survive a power cut", &RunStoreSync);
  }

  CLI::App* AddReading(const char* name, const char* help, Reader run) {
    auto* command = app_.add_subcommand(name, help);
    Bind(command, [this, run = std::move(run)] {
      Library library(Options());
      run(library, Form(), std::cout);
      return ExitCode::kOk;
    });
    return command;
  }

  void AddPhoto(CLI::App* command) {
    command
        ->add_option("FILE-OR-GUID", subject_,
                     "A file of this computer, a catalogue path, a GUID, or a file name that only "
                     "one photo has")
        ->required();
  }

  void Bind(CLI::App* command, std::function<ExitCode()> run) {
    command->callback([this, run = std::move(run)] { command_ = run; });
  }

  OutputForm Form() const { return json_ ? OutputForm::kJson : OutputForm::kHuman; }

  LibraryOptions Options() const {
    return {folder_.empty() ? DefaultLibraryFolder() : folder_, ReadPassword(password_)};
  }

  CLI::App app_{"vdsto keeps a catalogue of your pictures.", "vdsto"};
  std::string folder_;
  PasswordSource password_;
  bool json_ = false;
  std::vector<std::string> import_folders_;
  std::string subject_;
  std::string target_;
  std::function<ExitCode()> command_;
};

int Fail(ExitCode code, const std::string& message) {
  std::cerr << "vdsto: " << message << std::endl;
  return static_cast<int>(code);
}

}  // namespace

int RunTool(int argc, const char* const* argv) {
  InitialiseCatalogueLibrary();
  CommandLine command_line;
  try {
    const int code = command_line.Run(argc, argv);
    std::cout.flush();
    return std::cout ? code : Fail(ExitCode::kUnexpected, "the answer could not be written");
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return command_line.Explain(error);
    return Fail(ExitCode::kUsage, command_line.Complaint(error) + " (see vdsto --help)");
  } catch (const ToolError& error) {
    return Fail(error.Code(), error.what());
  } catch (const std::exception& error) {
    return Fail(ExitCode::kUnexpected, error.what());
  }
}

}  // namespace vdsto
