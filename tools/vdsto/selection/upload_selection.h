#pragma once
#include <vector>

#include "tools/vdsto/library/upload_queue.h"
#include "tools/vdsto/selection/photo_selection.h"

namespace vdsto {

/// The uploads that a command line names as photos; a GUID is also that of a queued photo which the
/// catalogue does not have. In the order of the queue, each once. Throws ToolError when some words
/// are nothing that is queued; nothing is to be changed then.
std::vector<Upload> SelectUploads(Library& library, const PhotoWords& words);
/// The same of `uploads`, a queue that photos come into with the command `how`.
std::vector<Upload> SelectUploads(Library& library, const PhotoWords& words,
                                  std::vector<Upload> uploads, const char* how);

}  // namespace vdsto
