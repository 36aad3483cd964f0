#pragma once

#include <cstdint>
#include <vector>

#include "vdstomgr/storage/index_key.h"

namespace vdstomgr {

/// Addresses of units in the order of a key. Ranks lie beside them, so that a search reads few
/// units.
class SortedUnits {
 public:
  /// Units of unknown key kinds keep their order, and so do units with equal keys that come by
  /// rising addresses.
  void Build(std::vector<const void*> units, const IndexKey& key);
  void Clear();

  int Count() const { return static_cast<int>(units_.size()); }
  bool Has(int position) const { return position >= 0 && position < Count(); }
  /// Null when there are none.
  const void** Data() { return units_.empty() ? nullptr : units_.data(); }
  const void* At(int position) const { return units_[static_cast<std::size_t>(position)]; }

  /// The first position with the key, or -1. The first is for ranked kinds, the second for units
  /// that the caller's function compares.
  int Find(KeyBytes key) const;
  int FindCustom(const void* probe) const;
  /// The ends of the run of keys that are equal to the one at a position.
  int RunStart(int position) const;
  int RunEnd(int position) const;

 private:
  void SortByKey();
  bool SharesStart(KeyBytes key) const;
  bool SameKey(int left, int right) const;

  IndexKey key_;
  std::size_t shared_ = 0;  ///< bytes in which all keys are alike: ranks are those of what follows
  std::vector<const void*> units_;
  std::vector<std::uint64_t> ranks_;  ///< empty for kinds without
};

}  // namespace vdstomgr
