#pragma once

#include <cstddef>
#include <functional>
#include <memory>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/storage/verify_storage.h"

namespace vdstomgr {

/// A record storage as it is when this object is made, to be copied while another process goes on
/// writing it. Claims nothing and takes no lock: records that are added later are left out, and
/// those that are removed later are in the copy as if they were not, since nothing that was written
/// is written over. A compaction meanwhile renames the files; the old ones stay open here.
///
/// Keeps the index file in memory (62 bytes an image). Not for use by two threads at once.
class VDSTO_API StorageSnapshot {
 public:
  /// Takes the next bytes of a copy. What it throws ends the copying and comes out.
  using Sink = std::function<void(const void* bytes, std::size_t size)>;

  /// `path` is the data file's, in the process's code page.
  explicit StorageSnapshot(const char* path);
  ~StorageSnapshot();
  StorageSnapshot(const StorageSnapshot&) = delete;
  StorageSnapshot& operator=(const StorageSnapshot&) = delete;

  /// False when there is no data file that can be walked; Found says why.
  bool IsReadable() const;

  /// Hands out a data file without slack. The copy of a sound storage is sound; of one with faults
  /// it has the same records and the same damaged places. False when the file cannot be read, or
  /// was emptied meanwhile: the copy is of no use then.
  bool CopyData(const Sink& sink);
  /// Hands out the index file that belongs to what CopyData has handed out: it names every live
  /// record, also when the storage's own index is damaged or lost. After CopyData.
  void CopyIndex(const Sink& sink) const;

  /// What is wrong with the data file, complete after CopyData.
  const StorageReport& Found() const;

 private:
  class State;
  std::unique_ptr<State> state_;
};

}  // namespace vdstomgr
