#include <algorithm>

#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/password.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(What folders are, for the programs that share the catalogue: secure folders ask for a password,
shared ones are seen by others, limits say what others may load up and down, and active folders are those
whose photos the catalogue keeps.)";
constexpr int kUploadOnly = 2;
constexpr int kFree = 3;

/// A change of folders: what is the command's own.
struct FolderChange {
  std::string participle;
  std::function<bool(const FOLDERINFO&)> is_done;
  std::function<void(const CDWordArray& ids)> apply;
};

ExitCode ChangeFolders(Invocation& invocation, Library& library, const FolderWords& words,
                       const ChangeOptions& options, const FolderChange& change) {
  CataloguePath paths(library);
  ChangePlan plan{"folder", change.participle};
  CDWordArray ids;
  for (const uint32_t id : SelectFolders(library, words)) {
    FOLDERINFO folder;
    library.Call([&](auto& catalogue) { return catalogue.GetFolderInfo(id, folder); });
    const bool is_done = change.is_done(folder);
    if (!is_done) ids.Add(id);
    plan.AddUnless(is_done, std::to_string(static_cast<int32_t>(id)), paths.NameOf(id));
  }
  return CarryOut(invocation, plan, options, [&] { change.apply(ids); });
}

const char* LimitName(const FOLDERINFO& folder) {
  return folder.nFolderUpDownType == kFree         ? "free"
         : folder.nFolderUpDownType == kUploadOnly ? "upload-only"
                                                   : "limited";
}

struct FolderShow {
  FolderWords folders;

  void Declare(Command& command) { command.Folders(folders); }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    CataloguePath paths(library);
    Answer answer{Json::array(), {}};
    for (const uint32_t id : SelectFolders(library, folders)) {
      const Answer shown = Describe(library, id, paths.NameOf(id));
      answer.json.push_back(shown.json);
      answer.text += (answer.text.empty() ? "" : "\n") + shown.text;
    }
    return invocation.Write(answer);
  }

  static Facts Describe(Library& library, uint32_t id, const std::string& path) {
    FOLDERINFO folder;
    bool is_active = false;
    int photos = 0;
    library.Call([&](auto& catalogue) {
      is_active = catalogue.IsActiveFolder(id);
      photos = catalogue.GetPhotoCountAtFolder(id);
      return catalogue.GetFolderInfo(id, folder);
    });
    const auto yes_or_no = [](bool is) { return Fact(Json(is), is ? "yes" : "no"); };
    return Facts(14)
        .Add("path", path)
        .Add("id", static_cast<int32_t>(id))
        .Add("photos", photos)
        .Add("changed", TimeFact(folder.szModifiedDate))
        .Add("secure", yes_or_no(folder.bSecureFolder != 0))
        .Add("has_password", yes_or_no(folder.szFolderPassword[0] != '\0'))
        .Add("shared", yes_or_no(folder.bSharedOption != 0))
        .Add("limit", LimitName(folder))
        .Add("previews", yes_or_no(folder.bAllowPreviewImage != 0))
        .Add("comments", yes_or_no(folder.bAllowComment != 0))
        .Add("active", yes_or_no(is_active));
  }
};

/// The folder's password is kept as it is, in a statement that a quote would break.
std::string FolderPassword(const PasswordSource& source) {
  if (!source.prompt && source.file.empty()) return {};
  const std::string password = ReadPassword(source);
  if (password.size() < sizeof FOLDERINFO::szFolderPassword &&
      password.find('\'') == std::string::npos)
    return password;
  throw ToolError(ExitCode::kUsage,
                  "a folder's password has at most 20 letters (6 Korean ones) and no quote (')");
}

struct FolderSecure {
  FolderWords folders;
  PasswordSource source;
  bool off = false;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Folders(folders)
        .Flag("--ask", source.prompt, "Ask for the folder's password; without one nothing opens it")
        .Option("--from", "FILE", source.file, "Read the folder's password from the first line")
        .Flag("--off", off, "Make the folders open to all, and forget their passwords")
        .Change(change);
  }

  ExitCode Run(Invocation& invocation) const {
    if (off && (source.prompt || !source.file.empty()))
      throw ToolError(ExitCode::kUsage, "--off takes no password");
    Library library = invocation.OpenLibrary();
    const std::string password = FolderPassword(source);
    const auto is_done = [&](const FOLDERINFO& folder) {
      return (folder.bSecureFolder != 0) == !off && folder.szFolderPassword == password;
    };
    return ChangeFolders(invocation, library, folders, change,
                         {off ? "made open" : "made secure", is_done, [&](const CDWordArray& ids) {
                            library.Call([&](auto& catalogue) {
                              return catalogue.SetFolderPassword(ids, !off, password.c_str());
                            });
                          }});
  }
};

struct FolderShare {
  FolderWords folders;
  bool off = false;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Folders(folders).Flag("--off", off, "Share them no longer").Change(change);
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    const auto is_done = [&](const FOLDERINFO& folder) {
      return (folder.bSharedOption != 0) == !off;
    };
    return ChangeFolders(
        invocation, library, folders, change,
        {off ? "no longer shared" : "shared", is_done, [&](const CDWordArray& ids) {
           library.Call([&](auto& catalogue) { return catalogue.SetSharedOption(ids, !off); });
         }});
  }
};

struct FolderLimit {
  std::string limit;
  FolderWords folders;
  bool recursive = false;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Word("LIMIT", limit, "free, upload-only, or limited (neither way)")
        .Folders(folders)
        .Flag("-r,--recursive", recursive, "The folders below too")
        .Change(change);
  }

  int Type() const {
    if (limit == "free") return kFree;
    if (limit == "upload-only") return kUploadOnly;
    if (limit == "limited") return 0;
    throw ToolError(ExitCode::kUsage,
                    "LIMIT is free, upload-only or limited, not '" + Printable(limit) + "'");
  }

  ExitCode Run(Invocation& invocation) const {
    const int type = Type();
    Library library = invocation.OpenLibrary();
    const auto is_done = [&](const FOLDERINFO& folder) {
      return !recursive && limit == LimitName(folder);
    };
    return ChangeFolders(invocation, library, folders, change,
                         {"made " + limit, is_done, [&](const CDWordArray& ids) {
                            for (const DWORD id : ids) Apply(library, id, type);
                          }});
  }

  /// Previews and comments stay as each folder has them.
  void Apply(Library& library, uint32_t id, int type) const {
    library.Call([&](auto& catalogue) {
      CDWordArray family{id};
      if (recursive) catalogue.GetSubFolder(id, family, true);
      return std::all_of(family.begin(), family.end(), [&](DWORD member) {
        FOLDERINFO folder;
        return catalogue.GetFolderInfo(member, folder) &&
               catalogue.SetFolderUpDownType(member, type, folder.bAllowPreviewImage, 0,
                                             folder.bAllowComment);
      });
    });
  }
};

struct FolderActive {
  FolderWords folders;
  ChangeOptions change;

  void Declare(Command& command) { command.Folders(folders).Change(change); }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    const auto is_done = [&](const FOLDERINFO& folder) {
      return library.Call(
          [&](auto& catalogue) { return catalogue.IsActiveFolder(folder.dwFolderID); });
    };
    return ChangeFolders(
        invocation, library, folders, change,
        {"made active", is_done, [&](const CDWordArray& ids) {
           library.Call([&](auto& catalogue) { return catalogue.AddActiveFolder(ids); });
         }});
  }
};

}  // namespace

void AddFolder(CommandGroup& tool) {
  CommandGroup folder = tool.AddGroup("folder", "Say what folders are, and show it", kNotes);
  folder.Add<FolderShow>("show", "Show all that is known of folders");
  folder.Add<FolderSecure>("secure", "Make folders secure, with a password or locked");
  folder.Add<FolderShare>("share", "Share folders");
  folder.Add<FolderLimit>("limit", "Say what others may load up and down");
  folder.Add<FolderActive>("active", "Make folders active");
}

}  // namespace vdsto
