#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>
#include <vector>

namespace vdstomgr {

/// Moves the items of two neighbouring sorted runs to `out`, those of the left first among equals.
template <class Item, class Less>
void MergeRuns(std::span<Item> left, std::span<Item> right, Item* out, const Less& less) {
  std::size_t l = 0;
  std::size_t r = 0;
  while (l < left.size() && r < right.size()) {
    *out++ = less(right[r], left[l]) ? right[r++] : left[l++];
  }
  out = std::copy(left.begin() + static_cast<std::ptrdiff_t>(l), left.end(), out);
  std::copy(right.begin() + static_cast<std::ptrdiff_t>(r), right.end(), out);
}

/// A stable sort that stays inside the items and ends whatever `less` answers: std::sort may do
/// neither with a comparison that contradicts itself.
template <class Item, class Less>
void MergeSort(std::vector<Item>& items, const Less& less) {
  const std::size_t count = items.size();
  std::vector<Item> merged(count);
  for (std::size_t run = 1; run < count; run *= 2) {
    for (std::size_t at = 0; at < count; at += 2 * run) {
      const std::size_t middle = std::min(at + run, count);
      const std::size_t end = std::min(at + 2 * run, count);
      MergeRuns(std::span(items).subspan(at, middle - at),
                std::span(items).subspan(middle, end - middle), merged.data() + at, less);
    }
    items.swap(merged);
  }
}

}  // namespace vdstomgr
