#pragma once

#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/storage/storage_files.h"

namespace vdstomgr {

/// The names that a compaction of one storage uses.
struct CompactionFiles {
  CString data;
  CString index;
  CString new_data;
  CString new_index;
  CString old_data;
  CString old_index;

  explicit CompactionFiles(const char* path)
      : data(path),
        index(IndexPathOf(data)),
        new_data(data + ".compacting.pdb"),
        new_index(data + ".compacting.pdx"),
        old_data(data + ".bak"),
        old_index(index + ".bak") {}

  void DeleteNew() const {
    DeleteUnlessInUse(new_data);
    DeleteUnlessInUse(new_index);
  }
  void DeleteOld() const {
    DeleteUnlessInUse(old_data);
    DeleteUnlessInUse(old_index);
  }
};

}  // namespace vdstomgr
