#include "vdstomgr/platform/dao/engine.h"

namespace vdstomgr::dao {

void RowDraft::Start(int columns) {
  values.resize(static_cast<size_t>(columns));
  is_set.assign(static_cast<size_t>(columns), false);
}

}  // namespace vdstomgr::dao
