#pragma once

#include <cstdint>
#include <vector>

#include "vdstomgr/storage/cluster_order.h"
#include "vdstomgr/storage/cluster_table.h"

namespace vdstomgr {

/// Which cluster of an index file stands at which position, kept in memory: the sorted ones in key
/// order, then those that have arrived since, in the order of arrival. Searches see only the first
/// SearchableCount positions. The clusters themselves stay where they lie.
class ClusterList {
 public:
  ClusterList() = default;
  explicit ClusterList(const DataHeader& header);

  /// Takes so many clusters as they lie in the file, all of them unsorted.
  void Adopt(BYTE* units, std::size_t count);
  /// To be told whenever the file may have moved.
  void SetUnits(BYTE* units) { units_ = units; }
  ClusterTable Table() const { return {units_, key_length_, order_}; }

  std::size_t Size() const { return sorted_.Size() + arrived_.size(); }
  std::size_t SearchableCount() const { return searchable_; }
  void LimitSearches(std::size_t count);
  /// The place in the file of the cluster at a position below Size.
  DWORD SlotAt(std::size_t position) const;
  /// So many leading positions are their own slots.
  std::size_t SettledCount() const { return settled_; }
  /// From now on every position is its own slot.
  void Settled();

  /// Takes up the cluster in the slot behind all others.
  void Append();
  void Remove(std::size_t position);
  /// The cluster in one slot is about to move to another.
  void Relabel(DWORD from, DWORD to);

  /// Whether the keys are of a kind that has an order. Sort does nothing without.
  bool HasOrder() const { return has_order_; }
  /// Merges what has arrived into what is sorted.
  void Sort();
  /// The slots of clusters that stand there more than once, all but one of each.
  std::vector<DWORD> Copies() const;

  /// The position of the key, the newest among equal ones, or -1.
  int Find(KeyBytes key) const;
  /// The position of a key that begins with a text, or -1.
  int FindPrefix(KeyBytes prefix) const;
  /// The position of the cluster of this record, or -1. All clusters must be sorted.
  int FindRecord(KeyBytes key, std::uint64_t offset) const;

 private:
  void InsertArrived(DWORD slot);
  void MergeArrived();
  void SetOriginAt(DWORD slot);
  void MoveOriginBehindGap();
  void RotateTo(std::size_t first);
  template <class Compare>
  int Search(const Compare& compare) const;
  bool IsTreeSearchable() const { return searchable_ == sorted_.Size(); }

  BYTE* units_ = nullptr;
  WORD key_length_ = 0;
  bool has_order_ = false;
  KeyOrder order_;

  ClusterOrder sorted_;
  std::vector<DWORD> arrived_;  ///< slots of the clusters behind the sorted ones
  std::size_t settled_ = 0;
  std::size_t searchable_ = 0;
};

}  // namespace vdstomgr
