#pragma once
#include <string>

#include "tools/vdsto/upload/rate_limiter.h"
#include "tools/vdsto/upload/target_folders.h"
#include "tools/vdsto/upload/upload_progress.h"
#include "tools/vdsto/upload/upload_queue.h"

namespace vdsto {

/// What all threads of a run share.
struct UploadSurroundings {
  UploadQueue& queue;
  TargetFolders& folders;
  RateLimiter& limiter;
  UploadProgress& progress;
};

/// What became of one file.
struct Uploaded {
  std::string name;  ///< below the target's folder
  uint64_t size = 0;
  bool was_there = false;
};

/// The upload of one file: to a temporary name in its folder, which is renamed when the file is
/// whole. What has the file's name already and the same contents counts as the file; what has other
/// contents is never touched, and the file gets a number.
class FileUpload {
 public:
  FileUpload(UploadSurroundings surroundings, const QueuedFile& job)
      : surroundings_(surroundings), job_(job) {}

  /// One attempt; the next one goes on where this one failed, if the target can. Throws
  /// UploadError and UploadStopped.
  Uploaded Try(UploadTarget& target);

 private:
  Uploaded Deliver(OutgoingFile& file, TargetFolder& folder, UploadTarget& target);
  bool Send(OutgoingFile& file, TargetFolder& folder, UploadTarget& target,
            const std::string& name);
  void RemoveParts(TargetFolder& folder, UploadTarget& target, const std::string& except);
  void Count(uint64_t position, uint64_t sent);
  std::string PlaceOf(const std::string& name) const;

  UploadSurroundings surroundings_;
  const QueuedFile& job_;
  uint64_t counted_ = 0;  // bytes of the file in the progress
};

}  // namespace vdsto
