#include "vdstomgr/storage/finish_compaction.h"

#include "vdstomgr/storage/compaction_files.h"

namespace vdstomgr {

/// Without its data file a storage is its old pair, of which the index may not have been renamed,
/// or, when somebody has deleted that, the new one. With the data file but no index the data is new
/// when no other new data is left.
StoragePair PairInForce(const CompactionFiles& files) {
  const bool has_index = IsThere(files.index);
  if (!IsThere(files.data)) {
    if (IsThere(files.old_data)) return {files.old_data, has_index ? files.index : files.old_index};
    if (IsThere(files.new_data)) return {files.new_data, has_index ? files.index : files.new_index};
  } else if (!has_index && IsThere(files.new_index) && !IsThere(files.new_data)) {
    return {files.data, files.new_index};
  }
  return {files.data, files.index};
}

/// The index first: a process killed before the data file follows leaves a state of a compaction.
bool FinishCompaction(const char* path) {
  const CompactionFiles files(path);
  if (files.index.IsEmpty()) return false;
  const StoragePair pair = PairInForce(files);
  const bool has_index =
      pair.index == files.index || !IsThere(pair.index) || MoveTo(pair.index, files.index);
  if (!has_index || (pair.data != files.data && !MoveTo(pair.data, files.data))) return false;
  if (IsThere(files.data) && IsThere(files.index)) files.DeleteNew();
  return true;
}

}  // namespace vdstomgr
