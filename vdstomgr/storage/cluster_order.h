#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include "vdstomgr/storage/cluster_table.h"

namespace vdstomgr {

/// A sorted list of clusters in which looking up, counting, inserting and removing in the middle
/// all stay cheap with millions of them: blocks of a few hundred, with the number of clusters
/// before each block in a Fenwick tree. Who inserts says where, and keeps the list sorted.
class ClusterOrder {
 public:
  std::size_t Size() const { return size_; }
  RankedSlot At(std::size_t position) const;
  void SetSlot(std::size_t position, DWORD slot);
  /// Sets each slot from a position on to its position.
  void NumberFrom(std::size_t position);

  void Insert(std::size_t position, RankedSlot cluster);
  void Remove(std::size_t position);
  /// Replaces the whole list.
  void Assign(const std::vector<RankedSlot>& clusters);
  std::vector<RankedSlot> All() const;
  void Clear() { Assign({}); }

  /// The number of clusters before the first that is neither of a lower rank nor, among those of
  /// this rank, one for whose slot `is_before` holds.
  template <class IsBefore>
  std::size_t CountBefore(std::uint64_t rank, const IsBefore& is_before) const;

 private:
  static constexpr std::size_t kBlockSize = 512;
  /// A block that is built with others has room for some more.
  static constexpr std::size_t kFilledSize = kBlockSize * 3 / 4;

  struct Block {
    std::size_t size = 0;
    std::array<std::uint64_t, kBlockSize> ranks;
    std::array<DWORD, kBlockSize> slots;

    void Insert(std::size_t index, RankedSlot cluster);
    void Remove(std::size_t index);
    void MoveTail(std::size_t first, Block& empty);
  };
  struct Location {
    std::size_t block;
    std::size_t index;
  };

  template <class SlotAt, class IsBefore>
  static std::size_t Partition(const std::uint64_t* ranks, std::size_t size, std::uint64_t rank,
                               const SlotAt& slot_at, const IsBefore& is_before);
  Location Locate(std::size_t position) const;
  Location MakeRoom(Location at);
  std::size_t SizeBefore(std::size_t block) const;
  void ChangeSize(std::size_t block, bool grows);
  void CountAnew();

  std::size_t size_ = 0;
  std::vector<std::unique_ptr<Block>> blocks_;  ///< none of them empty
  std::vector<std::uint64_t> first_ranks_;      ///< of each block
  std::vector<std::size_t> counts_;             ///< the Fenwick tree over the blocks' sizes
};

template <class SlotAt, class IsBefore>
std::size_t ClusterOrder::Partition(const std::uint64_t* ranks, std::size_t size,
                                    std::uint64_t rank, const SlotAt& slot_at,
                                    const IsBefore& is_before) {
  const auto* const first = std::lower_bound(ranks, ranks + size, rank);
  auto low = static_cast<std::size_t>(first - ranks);
  if (low == size || *first != rank) return low;
  auto high = static_cast<std::size_t>(std::upper_bound(first, ranks + size, rank) - ranks);
  while (low < high) {
    const std::size_t middle = low + (high - low) / 2;
    if (is_before(slot_at(middle))) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return low;
}

template <class IsBefore>
std::size_t ClusterOrder::CountBefore(std::uint64_t rank, const IsBefore& is_before) const {
  const std::size_t blocks = Partition(
      first_ranks_.data(), blocks_.size(), rank,
      [&](std::size_t block) { return blocks_[block]->slots[0]; }, is_before);
  if (blocks == 0) return 0;
  const Block& block = *blocks_[blocks - 1];
  return SizeBefore(blocks - 1) + Partition(
                                      block.ranks.data(), block.size, rank,
                                      [&](std::size_t index) { return block.slots[index]; },
                                      is_before);
}

}  // namespace vdstomgr
