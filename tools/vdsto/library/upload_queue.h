#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/vdsto/library/library.h"

namespace vdsto {

/// One file that waits to be uploaded, is being uploaded or was.
struct Upload {
  int position = 0;  ///< in the queue, from 0
  std::string guid;
  std::string name;
  std::string original;  ///< where the file lies, as a location
  std::string folder;    ///< the catalogue path it is uploaded to
  int status = 0;
  uint64_t size = 0;
  uint64_t sent = 0;
};

constexpr bool IsWaiting(int status) {
  return status == 0;
}
constexpr bool IsSending(int status) {
  return status == 1;
}
constexpr bool IsFinished(int status) {
  return status == 2 || status == 3;
}

/// The whole queue in its order. Throws ToolError.
std::vector<Upload> ReadUploads(Library& library);
/// A part of it, from a position on, at most `count`; read in pages.
std::vector<Upload> ReadUploads(Library& library, int first, int count);

/// Throws ToolError when the catalogue does not know where the photo's file is.
void RequireUploadable(const PHOTOINFO& photo);

/// What a row of either queue says of a photo that is to go to a folder, and is ready.
UPLOADLIST UploadRow(const PHOTOINFO& photo, const std::string& folder);

/// Puts photos at the end of the queue, in place of finished uploads of them; each is to go to the
/// folder that `name_of` calls its own. Throws ToolError.
void QueueUploads(Library& library, const CStringArray& guids,
                  const std::function<std::string(uint32_t folder)>& name_of);

}  // namespace vdsto
