#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "tools/vdsto/upload/upload_error.h"
#include "tools/vdsto/upload/upload_queue.h"
#include "tools/vdsto/upload/upload_target.h"

namespace vdsto {

struct UploadOptions {
  int threads = 4;
  int retries = 6;                ///< further attempts after the first
  uint64_t bytes_per_second = 0;  ///< 0: no limit
  bool quiet = false;             ///< draws no progress
};

/// What a run of the uploader did.
struct UploadSummary {
  struct Failure {
    std::string path;
    UploadFault fault;
    std::string reason;
  };
  struct OtherName {
    std::string path;
    std::string name;  ///< below the target's folder
  };

  uint64_t uploaded = 0;
  uint64_t already_there = 0;  ///< a file of the same contents lay in its place
  uint64_t bytes = 0;          ///< that were sent, also in vain
  uint64_t left = 0;           ///< files that are still ready
  double seconds = 0;
  bool interrupted = false;
  std::string stopped_by;  ///< why no further file was tried; empty when all were
  std::vector<Failure> failures;
  std::vector<OtherName> renamed;  ///< because their place was taken by something else
};

/// Works the queue until it is empty, the user interrupts, or a fault that every file would meet
/// stays after all attempts. Throws ToolError when the catalogue fails; what was in transfer is
/// ready again in any case.
UploadSummary RunUploads(UploadQueue& queue, UploadTarget& target, const UploadOptions& options);

}  // namespace vdsto
