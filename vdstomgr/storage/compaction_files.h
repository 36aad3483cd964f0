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

  /// The index goes first: alone it would be taken for that of a compaction that is nearly done.
  void DeleteNew() const {
    DeleteUnlessInUse(new_index);
    DeleteUnlessInUse(new_data);
  }
  void DeleteOld() const {
    DeleteUnlessInUse(old_data);
    DeleteUnlessInUse(old_index);
  }
};

struct StoragePair {
  CString data;
  CString index;
};

/// The names under which the two files of a storage lie now: their own but for a compaction that is
/// renaming them, or was killed there.
StoragePair PairInForce(const CompactionFiles& files);

}  // namespace vdstomgr
