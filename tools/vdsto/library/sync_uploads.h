#pragma once
#include <string>
#include <vector>

#include "tools/vdsto/library/catalogue_file.h"
#include "tools/vdsto/library/upload_queue.h"

/// The queue of the files that a synchronisation of folders uploads.
namespace vdsto {

/// Rows in the order of the queue, from a position on, at most `count`. Throws ToolError.
std::vector<Upload> ReadSyncUploads(CatalogueFile& file, int first, int count);

/// What a synchronisation keeps with a row for itself.
struct SyncFlags {
  bool only_once = false;
  bool tells_end = false;
};

/// Puts a photo at the end of the queue, or makes its row, if it has one, ready again. Throws
/// ToolError.
void QueueSyncUpload(Library& library, const PHOTOINFO& photo, const std::string& folder,
                     const SyncFlags& flags);

/// Gives rows another status; one that is ready then begins at its first byte. Throws ToolError.
void SetSyncStatus(Library& library, const std::vector<Upload>& uploads, int status);

}  // namespace vdsto
