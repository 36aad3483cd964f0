#include "vdstomgr/storage/cluster_order.h"

#include <bit>
#include <cassert>
#include <cstdint>

namespace vdstomgr {
namespace {

std::size_t LowestBit(std::size_t number) {
  return number & (~number + 1);
}

template <class Item, std::size_t kSize>
void InsertItem(std::array<Item, kSize>& items, std::size_t size, std::size_t index, Item item) {
  std::copy_backward(items.data() + index, items.data() + size, items.data() + size + 1);
  items[index] = item;
}

template <class Item, std::size_t kSize>
void RemoveItem(std::array<Item, kSize>& items, std::size_t size, std::size_t index) {
  std::copy(items.data() + index + 1, items.data() + size, items.data() + index);
}

}  // namespace

void ClusterOrder::Block::Insert(std::size_t index, RankedSlot cluster) {
  InsertItem(ranks, size, index, cluster.rank);
  InsertItem(slots, size, index, cluster.slot);
  ++size;
}

void ClusterOrder::Block::Remove(std::size_t index) {
  RemoveItem(ranks, size, index);
  RemoveItem(slots, size, index);
  --size;
}

void ClusterOrder::Block::MoveTail(std::size_t first, Block& empty) {
  empty.size = size - first;
  std::copy(ranks.data() + first, ranks.data() + size, empty.ranks.data());
  std::copy(slots.data() + first, slots.data() + size, empty.slots.data());
  size = first;
}

void ClusterOrder::NumberFrom(std::size_t position) {
  if (position >= size_) return;
  auto [block, index] = Locate(position);
  for (; block < blocks_.size(); ++block, index = 0) {
    for (; index < blocks_[block]->size; ++index) {
      blocks_[block]->slots[index] = static_cast<DWORD>(position++);
    }
  }
}

RankedSlot ClusterOrder::At(std::size_t position) const {
  assert(position < size_);
  const auto [block, index] = Locate(position);
  return {blocks_[block]->ranks[index], blocks_[block]->slots[index]};
}

void ClusterOrder::SetSlot(std::size_t position, DWORD slot) {
  assert(position < size_);
  const auto [block, index] = Locate(position);
  blocks_[block]->slots[index] = slot;
}

void ClusterOrder::Insert(std::size_t position, RankedSlot cluster) {
  assert(position == 0 || At(position - 1).rank <= cluster.rank);
  assert(position == size_ || cluster.rank <= At(position).rank);
  const auto [block, index] = MakeRoom(Locate(position));
  blocks_[block]->Insert(index, cluster);
  if (index == 0) first_ranks_[block] = cluster.rank;
  ChangeSize(block, true);
}

void ClusterOrder::Remove(std::size_t position) {
  assert(position < size_);
  const auto [block, index] = Locate(position);
  blocks_[block]->Remove(index);
  ChangeSize(block, false);
  if (blocks_[block]->size == 0) {
    blocks_.erase(blocks_.begin() + static_cast<std::ptrdiff_t>(block));
    CountAnew();
  } else if (index == 0) {
    first_ranks_[block] = blocks_[block]->ranks[0];
  }
}

void ClusterOrder::Assign(const std::vector<RankedSlot>& clusters) {
  blocks_.clear();
  for (std::size_t at = 0; at < clusters.size(); ++at) {
    if (at % kFilledSize == 0) blocks_.push_back(std::make_unique<Block>());
    blocks_.back()->Insert(at % kFilledSize, clusters[at]);
  }
  CountAnew();
}

std::vector<RankedSlot> ClusterOrder::All() const {
  std::vector<RankedSlot> all;
  all.reserve(size_);
  for (const auto& block : blocks_) {
    for (std::size_t i = 0; i < block->size; ++i) all.push_back({block->ranks[i], block->slots[i]});
  }
  return all;
}

/// The position behind the last cluster is at the end of the last block.
ClusterOrder::Location ClusterOrder::Locate(std::size_t position) const {
  std::size_t block = 0;
  for (std::size_t step = std::bit_floor(blocks_.size()); step != 0; step /= 2) {
    if (block + step <= blocks_.size() && counts_[block + step] <= position) {
      block += step;
      position -= counts_[block];
    }
  }
  if (block == blocks_.size() && block != 0) return {block - 1, blocks_[block - 1]->size};
  return {block, position};
}

/// Splits a full block in the middle; but one that is added to at the very end stays full, so that
/// rising keys leave full blocks behind.
ClusterOrder::Location ClusterOrder::MakeRoom(Location at) {
  if (blocks_.empty()) {
    blocks_.push_back(std::make_unique<Block>());
    CountAnew();
    return {0, 0};
  }
  Block& full = *blocks_[at.block];
  if (full.size < kBlockSize) return at;
  const bool is_end = at.block + 1 == blocks_.size() && at.index == kBlockSize;
  const std::size_t kept = is_end ? kBlockSize : kBlockSize / 2;
  auto next = std::make_unique<Block>();
  full.MoveTail(kept, *next);
  blocks_.insert(blocks_.begin() + static_cast<std::ptrdiff_t>(at.block) + 1, std::move(next));
  CountAnew();
  return at.index < kept ? at : Location{at.block + 1, at.index - kept};
}

std::size_t ClusterOrder::SizeBefore(std::size_t block) const {
  std::size_t size = 0;
  for (; block != 0; block -= LowestBit(block)) size += counts_[block];
  return size;
}

void ClusterOrder::ChangeSize(std::size_t block, bool grows) {
  size_ = grows ? size_ + 1 : size_ - 1;
  for (std::size_t node = block + 1; node < counts_.size(); node += LowestBit(node)) {
    counts_[node] = grows ? counts_[node] + 1 : counts_[node] - 1;
  }
}

void ClusterOrder::CountAnew() {
  size_ = 0;
  first_ranks_.assign(blocks_.size(), 0);
  counts_.assign(blocks_.size() + 1, 0);
  for (std::size_t block = 0; block < blocks_.size(); ++block) {
    if (blocks_[block]->size != 0) first_ranks_[block] = blocks_[block]->ranks[0];
    size_ += blocks_[block]->size;
    const std::size_t node = block + 1;
    counts_[node] += blocks_[block]->size;
    const std::size_t parent = node + LowestBit(node);
    if (parent < counts_.size()) counts_[parent] += counts_[node];
  }
}

}  // namespace vdstomgr
