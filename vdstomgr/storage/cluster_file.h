#pragma once

#include <cstdint>
#include <vector>

#include "vdstomgr/storage/array_file.h"
#include "vdstomgr/storage/cluster_list.h"

namespace vdstomgr {

/// The index file of a record storage: its clusters, addressed by position in key order.
///
/// Sorting after each add would move half of the file, so a cluster stays in the file where it came
/// to lie, and the key order is kept in memory: adding and removing cost the same for a thousand
/// clusters and for a million. The file itself is put in order (settled) when somebody can see it:
/// by Sort, Settle, Close and after every change once Array has handed the file out; and always
/// when that moves just a few clusters. Whatever moves, a killed process leaves every cluster at
/// least once; what it left twice or half-written is put away by the next Open.
///
/// What Add without sorting brings stands behind the sorted clusters in the order of arrival.
/// Searches see only the first SearchableCount clusters. Not thread-safe: the storage's lock is
/// held around every call.
class ClusterFile {
 public:
  /// Opens and sorts. False when the file does not belong to a data file with this header.
  bool Open(const char* path, const DataHeader& header);
  void Close();

  /// The file itself, in key order from now on after every operation.
  CRkFileArrayManager* Array();
  bool IsOpen() const { return is_open_; }
  std::size_t Size();
  /// How many clusters searches look at.
  std::size_t SearchableCount() const { return list_.SearchableCount(); }

  /// Adds a cluster: to its place with `sort`, otherwise at the end, out of sight of searches until
  /// the next sort. False when the disk is full; nothing has changed then.
  bool Add(KeyBytes key, const RecordPlace& place, bool sort);
  /// Keeps the order of the others. The position must be below Size.
  bool RemoveAt(std::size_t position);
  bool RemoveAll();

  /// Sorts what has arrived since the last sort; does nothing when nothing has been added.
  void SortIfNeeded();
  /// Sorts, and settles the file. False when the keys have no order or the disk is full.
  bool Sort();
  /// Puts the file itself in order; false when the disk is full.
  bool Settle();
  /// Returns when the device holds the file, or false.
  bool Sync() { return SyncArray(array_); }

  /// The position of the key, the newest among equal ones, or -1.
  int Find(KeyBytes key);
  /// The position of a key that begins with a text, or -1.
  int FindPrefix(KeyBytes prefix);
  /// The position of the cluster of this record, or -1. All clusters must be sorted.
  int FindRecord(KeyBytes key, std::uint64_t offset);

  /// The position must be below Size.
  RecordPlace PlaceAt(std::size_t position);
  /// As many bytes as keys have.
  std::vector<BYTE> KeyAt(std::size_t position);

 private:
  class Access;

  void Adopt();
  void DropFree();
  bool FreeCopies();
  void SettleIfSeen();
  void UpdateView();

  CRkFileArrayManager array_;
  bool is_open_ = false;
  bool is_seen_ = false;  ///< Array has been called
  WORD key_length_ = 0;
  ClusterList list_;
  bool needs_sort_ = true;
  std::vector<BYTE> unit_;
};

}  // namespace vdstomgr
