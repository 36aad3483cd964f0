#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <memory>

#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/output_file.h"
#include "tools/vdsto/cli/upload_text.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/upload_gifts.h"
#include "tools/vdsto/selection/album_path.h"
#include "tools/vdsto/selection/upload_selection.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

using Manager = CRkPhotoDBManager;

constexpr const char* kNotes =
    R"(The queue is worked from its front. Uploads that wait can be moved; what stands before the first of
them stays where it is: files that are done, being sent, or have failed.)";
constexpr const char* kFileNotes =
    R"(The file has a line for each upload that is not done, in UTF-8, with fields between '|'. Names are
not escaped: one with a '|' in it breaks its line.)";

struct UploadList {
  int first = 1;
  int count = INT32_MAX;

  void Declare(Command& command) { command.Page(first, count); }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    const auto uploads = ReadUploads(library, first - 1, count);
    Answer answer = ListOf(uploads);
    if (invocation.WantsJson()) {
      for (Json& upload : answer.json) AddGifts(library, upload);
    }
    return invocation.Write(answer);
  }

  /// What waits for the upload, by names.
  static void AddGifts(Library& library, Json& upload) {
    const UploadGifts gifts = ReadGifts(library, upload["guid"]);
    Json tags = Json::array(), albums = Json::array();
    for (const DWORD tag : gifts.tags)
      tags.push_back(library.Call([&](auto& each) { return each.GetTagName(tag); }).Str());
    for (const ALBUMINDEX& album : gifts.albums) albums.push_back(AlbumPath(library).NameOf(album));
    upload["tags"] = std::move(tags);
    upload["albums"] = std::move(albums);
  }
};

/// A command that moves uploads: how it is said and which operation does it.
struct Reordering {
  const char* name;
  const char* help;
  const char* participle;
  int (Manager::*move)(CDWordArray& positions);
};

constexpr Reordering kTop{"top", "Upload photos before all others", "moved to the front",
                          &Manager::SetUploadReorder_TOP};
constexpr Reordering kUp{"up", "Move uploads together, one place forward", "moved forward",
                         &Manager::SetUploadReorder_UP};
constexpr Reordering kDown{"down", "Move uploads together, one place back", "moved back",
                           &Manager::SetUploadReorder_DOWN};
constexpr Reordering kBottom{"bottom", "Upload photos after all others", "moved to the end",
                             &Manager::SetUploadReorder_BOTTOM};

template <const Reordering& reordering>
struct UploadMove {
  PhotoWords photos;
  ChangeOptions change;

  void Declare(Command& command) { command.Photos(photos).Change(change).Notes(kNotes); }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    const auto uploads = SelectUploads(library, photos);
    RequireMovable(library, uploads);
    return CarryOut(invocation, PlanFor(uploads, reordering.participle), change, [&] {
      CDWordArray positions;
      for (const Upload& upload : uploads) positions.Add(static_cast<DWORD>(upload.position));
      library.Call([&](auto& catalogue) { return (catalogue.*reordering.move)(positions); });
    });
  }

  static void RequireMovable(Library& library, const std::vector<Upload>& uploads) {
    const int first_waiting =
        library.Call([](auto& catalogue) { return catalogue.cGetNextUploadListIndex(); });
    if (uploads.empty() || uploads.front().position >= first_waiting) return;
    throw ToolError(ExitCode::kRefused,
                    Printable(uploads.front().name) +
                        " stands before all that waits, and stays there: nothing was moved");
  }
};

struct UploadRetry {
  bool all = false;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Flag("-a,--all", all, "Whatever the error was, and what is being sent, too")
        .Change(change);
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    auto uploads = ReadUploads(library);
    std::erase_if(uploads, [&](const Upload& upload) { return !IsMeant(upload.status); });
    return CarryOut(invocation, PlanFor(uploads, "made ready again"), change, [&] {
      library.Call([&](auto& catalogue) {
        return all ? catalogue.RetryUploadListErrored()
                   : catalogue.RetryUploadListErroredOfIndexed();
      });
    });
  }

  bool IsMeant(int status) const {
    constexpr int kRetriable[] = {-7212, -500, -7103, -7104, -7105, -7106, -7107, -7108};
    if (all) return status < 0 || IsSending(status);
    return std::ranges::find(kRetriable, status) != std::end(kRetriable);
  }
};

struct UploadRemove {
  PhotoWords photos;
  bool done = false;
  bool all = false;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Photos(photos, false)
        .Flag("--done", done, "Those that are done")
        .Flag("-a,--all", all, "The whole queue")
        .Change(change);
  }

  ExitCode Run(Invocation& invocation) const {
    if (!all && !done && photos.words.empty())
      throw ToolError(ExitCode::kUsage, "name photos, or say --done or --all");
    Library library = invocation.OpenLibrary();
    const auto uploads = Select(library);
    return CarryOut(invocation, PlanFor(uploads, "taken out of the queue"), change, [&] {
      CStringArray guids;
      for (const Upload& upload : uploads) guids.Add(upload.guid.c_str());
      library.Call([&](auto& catalogue) { return catalogue.DelUploadList(guids); });
      ForgetGifts(library, guids);
    });
  }

  std::vector<Upload> Select(Library& library) const {
    if (all) return ReadUploads(library);
    std::vector<Upload> uploads = done ? ReadUploads(library) : SelectUploads(library, photos);
    if (done) std::erase_if(uploads, [](const Upload& each) { return !IsFinished(each.status); });
    return uploads;
  }
};

struct UploadStat {
  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    uint64_t total = 0, done = 0, failed = 0;
    int count = 0, done_count = 0, failed_count = 0, waiting = 0, retriable = 0;
    library.Call([&](auto& catalogue) {
      waiting = catalogue.GetUploadReadyCount();
      retriable = catalogue.GetUploadRetriableErrorCount();
      return catalogue.ResetUploadInfoStats(total, count, done, done_count, failed, failed_count);
    });
    return invocation.Write(Facts(11)
                                .Add("uploads", count)
                                .Add("waiting", waiting)
                                .Add("sending", count - waiting - done_count - failed_count)
                                .Add("done", done_count)
                                .Add("failed", failed_count)
                                .Add("retriable", retriable)
                                .Add("size", SizeFact(total))
                                .Add("sent", SizeFact(done))
                                .Add("failed_size", SizeFact(failed)));
  }
};

ExitCode TellCount(Invocation& invocation, const char* key, uint64_t count) {
  return invocation.Write(
      Facts().ForPrograms(key, count).ForPeople(Counted(count, "upload") + " " + key));
}

struct UploadSave {
  std::string file;
  bool force = false;

  void Declare(Command& command) {
    command.Word("FILE", file, "The file to write")
        .Flag("-f,--force", force, "Replace a file that exists; pictures of the catalogue stay")
        .Notes(kFileNotes);
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    const OutputFile output(file);
    output.RequireFree(library, force);
    const CBinData lines = Lines(library);
    if (!lines.IsEmpty()) output.Write({lines.GetData(), lines.GetLength()});
    return TellCount(invocation, "saved",
                     static_cast<uint64_t>(std::ranges::count(lines, BYTE{'\n'})));
  }

  /// Nothing when all is done.
  static CBinData Lines(Library& library) {
    const std::string path = Joined(library.Folder(), "uploads." + std::to_string(getpid()));
    CBinData lines;
    library.Call([&](auto& catalogue) {
      catalogue.SaveUploadList(path.c_str());
      const bool is_there = CUtilityLib::LoadFileData(path.c_str(), lines);
      std::remove(path.c_str());
      return is_there;
    });
    return lines;
  }
};

struct UploadLoad {
  std::string file;

  void Declare(Command& command) { command.Word("FILE", file, "A saved queue").Notes(kFileNotes); }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    RequireNew(library);
    uint64_t loaded = 0;
    CRkCallback progress([&](DWORD, DWORD, const char*, bool) { ++loaded; });
    library.Call([&](auto& catalogue) {
      catalogue.LoadUploadList(file.c_str(), &progress);
      return true;
    });
    return TellCount(invocation, "loaded", loaded);
  }

  /// A file that is queued twice would be sent twice, and what becomes of one told of both.
  void RequireNew(Library& library) const {
    const auto close = [](vdstomgr::CsvReader* reader) { CUtilityLib::CloseCSV(reader); };
    const std::unique_ptr<vdstomgr::CsvReader, decltype(close)> reader(
        CUtilityLib::OpenCSV(file.c_str(), "|", "\r\n"), close);
    if (!reader) throw ToolError(ExitCode::kNotFound, Printable(file) + " cannot be read");
    UPLOADLIST row;
    for (CStringArray fields; CUtilityLib::ReadCSV(reader.get(), fields) != -1;) {
      if (fields.GetSize() > kGuidField && library.Call([&](auto& catalogue) {
            return catalogue.GetUploadInfo(fields[kGuidField], row);
          }))
        throw ToolError(ExitCode::kRefused,
                        Printable(row.szFileName) + " is queued already: nothing was loaded");
    }
  }

  static constexpr int kGuidField = 1;
};

}  // namespace

void AddUpload(CommandGroup& tool) {
  CommandGroup upload = tool.AddGroup("upload", "Look after the queue of uploads", kNotes);
  AddUploadAdd(upload);
  upload.Add<UploadList>("ls", "List the queue in its order");
  upload.Add<UploadMove<kTop>>(kTop.name, kTop.help);
  upload.Add<UploadMove<kUp>>(kUp.name, kUp.help);
  upload.Add<UploadMove<kDown>>(kDown.name, kDown.help);
  upload.Add<UploadMove<kBottom>>(kBottom.name, kBottom.help);
  upload.Add<UploadRetry>("retry", "Try again what failed for a reason that may be gone");
  upload.Add<UploadRemove>("rm", "Take uploads out of the queue");
  AddUploadRun(upload);
  upload.Add<UploadStat>("stat", "Count the queue's files and bytes");
  upload.Add<UploadSave>("save", "Write what is not done to a file");
  upload.Add<UploadLoad>("load", "Queue what such a file holds");
}

}  // namespace vdsto
