#include "vdstomgr/platform/dao/column_table.h"

#include <algorithm>
#include <cassert>

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/text/ascii.h"

namespace vdstomgr::dao {

int ColumnTable::Find(std::string_view name) const {
  const auto is_named = [&](const ColumnSchema& column) { return SameName(column.name, name); };
  const auto found = std::find_if(columns_.begin(), columns_.end(), is_named);
  if (found == columns_.end() || std::any_of(found + 1, columns_.end(), is_named)) {
    Throw(Error::ItemNotFound, name);
  }
  return static_cast<int>(found - columns_.begin());
}

const std::vector<int>& ColumnTable::Positions(const void* key,
                                               std::span<const char* const> names) const {
  for (const auto& [known_key, positions] : known_lists_) {
    if (known_key != key) continue;
    assert(positions.size() == names.size());
    return positions;
  }
  std::vector<int> positions;
  positions.reserve(names.size());
  for (const char* name : names) positions.push_back(Find(name));
  return known_lists_.emplace_back(key, std::move(positions)).second;
}

}  // namespace vdstomgr::dao
