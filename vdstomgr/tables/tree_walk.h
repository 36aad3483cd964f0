#pragma once

#include <cstddef>
#include <ranges>
#include <unordered_set>
#include <vector>

#include "vdstomgr/platform/framework/types.h"

namespace vdstomgr {

/// Goes through what is below `start` in a tree of folders or albums: each child, followed by its
/// own children when `recursive`. `children_of(id)` answers the children in order, `visit(child)`
/// the id to go on below. Nothing is gone into twice, so that a circle of parents ends the walk.
template <class ChildrenOf, class Visit>
void WalkTree(DWORD start, bool recursive, ChildrenOf children_of, Visit visit) {
  struct Level {
    decltype(children_of(start)) children;
    std::ptrdiff_t next = 0;
  };
  std::unordered_set<DWORD> entered{start};
  std::vector<Level> levels;
  levels.push_back({children_of(start)});
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next == std::ranges::ssize(level.children)) {
      levels.pop_back();
      continue;
    }
    const DWORD id = visit(std::ranges::begin(level.children)[level.next++]);
    if (recursive && entered.insert(id).second) levels.push_back({children_of(id)});
  }
}

}  // namespace vdstomgr
