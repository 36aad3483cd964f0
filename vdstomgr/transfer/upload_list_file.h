#pragma once

#include "vdstomgr/platform/common/callback.h"
#include "vdstomgr/transfer/upload_list.h"

namespace vdstomgr::transfer {

/// The unfinished part of the queue as a text file, to take it over into another catalogue. A line
/// is a row, its fields separated by '|'. Names and paths are not escaped: one that holds a '|' or
/// a line's end breaks its line.
class VDSTO_API UploadListFile : public UploadList {
 public:
  /// Writes all rows that are not finished in place of any file of that name; without such a row no
  /// file is left. Nothing happens when the file cannot be made.
  void SaveUploadList(const char* path);
  /// Adds the rows of such a file, all of them ready, up to the first line with fewer than 8
  /// fields. They keep their places, and existing rows stay. `progress` may be null and is told
  /// (lines read so far, null) for each row. Nothing happens when the file cannot be read.
  void LoadUploadList(const char* path, CRkCallback* progress);
};

}  // namespace vdstomgr::transfer
