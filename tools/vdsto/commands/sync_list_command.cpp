#include <algorithm>

#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/cli/upload_text.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/sync_uploads.h"
#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/selection/upload_selection.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(The second queue of uploads: the one of a program that keeps folders in step, which takes the next
file, sends it, and notes what became of it. vdsto upload run does not touch it. Places in it are counted
anew by every program: what is added later can come before what is there.)";
constexpr int kFinished = 2;

/// A library and its second queue.
struct SyncQueue {
  SyncQueue(Invocation& invocation, Use use)
      : library(invocation.AskForLibrary(), use), file(library) {}

  std::vector<Upload> Read() { return ReadSyncUploads(file, 0, INT32_MAX); }
  std::vector<Upload> Select(const PhotoWords& photos) {
    return SelectUploads(library, photos, Read(), "vdsto synclist add");
  }

  Library library;
  CatalogueFile file;
};

struct SyncListAdd {
  PhotoWords photos;
  bool once = false;
  bool tells_end = false;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Photos(photos)
        .Flag("--once", once, "Mark them as to be sent one time only")
        .Flag("--tell-end", tells_end, "Mark them as to be told of at their end")
        .Change(change);
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    CataloguePath paths(library);
    return ChangePhotos(invocation, library, photos, change,
                        {.participle = "queued",
                         .is_done =
                             [&](const PHOTOINFO& photo) {
                               RequireUploadable(photo);
                               return IsUnderWay(library, photo.szGUID);
                             },
                         .apply =
                             [&](const CStringArray& guids) {
                               for (const CString& guid : guids) Queue(library, paths, guid.Str());
                             }});
  }

 private:
  static bool IsUnderWay(Library& library, const char* guid) {
    SYNCUPLOADLIST row;
    return library.Call([&](auto& catalogue) {
      return catalogue.GetSyncUploadInfo(guid, row) &&
             (IsWaiting(row.nStatus) || IsSending(row.nStatus));
    });
  }

  void Queue(Library& library, CataloguePath& paths, const std::string& guid) const {
    const auto photo = library.Photo(guid);
    if (photo) QueueSyncUpload(library, *photo, paths.NameOf(photo->dwFolderID), {once, tells_end});
  }
};

struct SyncListShow {
  int first = 1;
  int count = INT32_MAX;

  void Declare(Command& command) { command.Page(first, count); }

  ExitCode Run(Invocation& invocation) const {
    SyncQueue queue(invocation, Use::kReading);
    return invocation.Write(ListOf(ReadSyncUploads(queue.file, first - 1, count)));
  }
};

struct SyncListNext {
  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    SYNCUPLOADLIST row;
    if (!library.Call([&](auto& catalogue) { return catalogue.GetNextSyncUploadList(row); }))
      throw ToolError(ExitCode::kNotFound, "nothing is waiting");
    return invocation.Write(Facts(10)
                                .Add("guid", row.szGUID)
                                .Add("original", row.szOPPath)
                                .Add("folder", row.szServerPath)
                                .Add("name", row.szFileName)
                                .Add("size", SizeFact(row.dxFileSize))
                                .Add("sent", SizeFact(row.dxSentBytes))
                                .Add("once", row.bOnlyOneTime != 0)
                                .Add("tell_end", row.bPostEndMsgToSyncDlg != 0));
  }
};

struct SyncListDone {
  PhotoWords photos;
  int error = 0;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Photos(photos)
        .NumberOption("--error", "CODE", error, -32768, -1, "They failed, with this code below 0")
        .Change(change);
  }

  ExitCode Run(Invocation& invocation) const {
    SyncQueue queue(invocation, Use::kChanging);
    const int status = error < 0 ? error : kFinished;
    const auto uploads = queue.Select(photos);
    return CarryOut(invocation, PlanFor(uploads, error < 0 ? "noted as failed" : "noted as done"),
                    change, [&] { SetSyncStatus(queue.library, uploads, status); });
  }
};

struct SyncListRetry {
  bool all = false;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Flag("-a,--all", all, "What is being sent, too").Change(change);
  }

  ExitCode Run(Invocation& invocation) const {
    SyncQueue queue(invocation, Use::kChanging);
    auto uploads = queue.Read();
    std::erase_if(uploads, [&](const Upload& upload) {
      return upload.status >= 0 && !(all && IsSending(upload.status));
    });
    return CarryOut(invocation, PlanFor(uploads, "made ready again"), change,
                    [&] { SetSyncStatus(queue.library, uploads, 0); });
  }
};

struct SyncListClear {
  ChangeOptions change;

  void Declare(Command& command) { command.Change(change); }

  ExitCode Run(Invocation& invocation) const {
    SyncQueue queue(invocation, Use::kChanging);
    return CarryOut(invocation, PlanFor(queue.Read(), "taken out of the queue"), change, [&] {
      queue.library.Call([](auto& catalogue) { return catalogue.DelSyncUploadListAll(); });
    });
  }
};

struct SyncListStat {
  ExitCode Run(Invocation& invocation) const {
    SyncQueue queue(invocation, Use::kReading);
    const auto uploads = queue.Read();
    const auto count = [&](auto is_meant) {
      return std::ranges::count_if(uploads, is_meant, &Upload::status);
    };
    uint64_t total = 0, done = 0, failed = 0;
    int rows = 0, done_rows = 0, failed_rows = 0;
    queue.library.Call([&](auto& catalogue) {
      return catalogue.ResetSyncUploadInfoStats(total, rows, done, done_rows, failed, failed_rows);
    });
    return invocation.Write(Facts(11)
                                .Add("uploads", rows)
                                .Add("waiting", count(IsWaiting))
                                .Add("sending", count(IsSending))
                                .Add("done", done_rows)
                                .Add("failed", failed_rows)
                                .Add("size", SizeFact(total))
                                .Add("sent", SizeFact(done))
                                .Add("failed_size", SizeFact(failed)));
  }
};

}  // namespace

void AddSyncList(CommandGroup& tool) {
  CommandGroup list =
      tool.AddGroup("synclist", "Look after the queue of uploads of a synchronisation", kNotes);
  list.Add<SyncListAdd>("add", "Queue photos; those that wait already stay where they are");
  list.Add<SyncListShow>("ls", "List the queue in its order");
  list.Add<SyncListNext>("next", "Take the first one that waits: it counts as being sent then");
  list.Add<SyncListDone>("done", "Note that photos were sent, or why they were not");
  list.Add<SyncListRetry>("retry", "Make ready again what failed");
  list.Add<SyncListClear>("clear", "Empty the queue");
  list.Add<SyncListStat>("stat", "Count the queue's files and bytes");
}

}  // namespace vdsto
