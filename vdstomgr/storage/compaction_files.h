#pragma once

#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/storage/record_storage_state.h"

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
    DeleteIfThere(new_data);
    DeleteIfThere(new_index);
  }
  void DeleteOld() const {
    DeleteIfThere(old_data);
    DeleteIfThere(old_index);
  }
};

}  // namespace vdstomgr
