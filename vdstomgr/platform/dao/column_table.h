#pragma once

#include <cassert>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "vdstomgr/platform/dao/schema.h"

namespace vdstomgr::dao {

/// The output columns of one query shape, found by name.
class ColumnTable {
 public:
  ColumnTable() = default;
  explicit ColumnTable(std::vector<ColumnSchema> columns) : columns_(std::move(columns)) {}

  int Count() const { return static_cast<int>(columns_.size()); }
  const ColumnSchema& At(int position) const {
    assert(position >= 0 && position < Count());
    return columns_[static_cast<size_t>(position)];
  }
  const std::vector<ColumnSchema>& All() const { return columns_; }

  /// Position of the column of that name (ASCII case disregarded). Throws ItemNotFound when no
  /// column, or more than one, has it.
  int Find(std::string_view name) const;

  /// The positions of `names`, found once per shape: `key` names the list, and the same key must
  /// always come with the same names. Throws ItemNotFound like Find.
  const std::vector<int>& Positions(const void* key, std::span<const char* const> names) const;

 private:
  std::vector<ColumnSchema> columns_;
  mutable std::vector<std::pair<const void*, std::vector<int>>> known_lists_;
};

}  // namespace vdstomgr::dao
