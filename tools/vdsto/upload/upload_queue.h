#pragma once
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "tools/vdsto/library/library.h"
#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/upload/upload_error.h"

namespace vdsto {

/// A file of the queue that is in transfer.
struct QueuedFile {
  std::string guid;
  std::string path;    ///< on this computer
  std::string folder;  ///< at the target
  std::string name;    ///< at the target, if its place is free
  uint64_t size = 0;   ///< when it was queued
};

/// The catalogue's upload queue as the threads of a run work it. Rows are claimed, and what became
/// of them is written, several in one commit: at most what threads do in a moment. Everything
/// throws ToolError when the catalogue fails. Any thread.
class UploadQueue {
 public:
  /// The caller holds the library's upload lock: what is in transfer was left so by a killed run
  /// and is ready again.
  explicit UploadQueue(Library& library);

  struct Sum {
    uint64_t files = 0;
    uint64_t bytes = 0;
  };
  /// What is ready.
  Sum Ready();

  /// The next ready file, in transfer from now on; nothing when none is left. The thread that takes
  /// one of the last that were claimed ahead claims more, while the others go on with those.
  std::optional<QueuedFile> Claim();
  /// How much of a file the target has.
  void NoteSent(const std::string& guid, uint64_t bytes);
  /// The file is at the target. The photo gets the tags and albums that waited for that.
  void NoteFinished(const std::string& guid, uint64_t bytes);
  void NoteFailed(const std::string& guid, UploadFault fault);
  /// Writes what was noted.
  void Write();
  /// The same, and all that is still in transfer is ready again, with what was sent of it.
  void Release();

 private:
  using Clock = std::chrono::steady_clock;
  struct Notes {
    std::map<std::string, uint64_t> sent;
    std::vector<std::pair<std::string, int>> results;  // GUID and status
  };

  std::deque<QueuedFile> ClaimSome(size_t count);
  void ClaimMore(std::unique_lock<std::mutex>& lock);
  void WriteNotes(CRkPhotoDBManager& catalogue);
  QueuedFile Described(const UPLOADLIST& row);
  std::string CatalogueFolderOf(const std::string& guid);

  Library& library_;
  CataloguePath paths_;

  std::mutex writing_;  // over every work on the catalogue, and guards:
  std::map<uint32_t, std::string> folder_names_;

  std::mutex claiming_;  // guards:
  std::condition_variable claims_changed_;
  std::deque<QueuedFile> claimed_;
  bool is_claiming_ = false;
  bool is_short_ = false;  // the catalogue had no more
  size_t ahead_ = 1;
  Clock::time_point last_claim_{};

  std::mutex noting_;  // guards:
  Notes notes_;
};

}  // namespace vdsto
