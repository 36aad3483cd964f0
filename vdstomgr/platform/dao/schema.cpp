#include "vdstomgr/platform/dao/schema.h"
#include "vdstomgr/platform/text/ascii.h"

#include <algorithm>

namespace vdstomgr::dao {

const ColumnSchema* TableSchema::Find(std::string_view column) const {
  const auto found = std::find_if(columns.begin(), columns.end(), [&](const ColumnSchema& known) {
    return SameName(known.name, column);
  });
  return found == columns.end() ? nullptr : &*found;
}

}  // namespace vdstomgr::dao
