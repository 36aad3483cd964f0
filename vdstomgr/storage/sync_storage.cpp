#include "vdstomgr/storage/sync_storage.h"

#include "vdstomgr/storage/image_storage.h"
#include "vdstomgr/storage/record_storage_state.h"
#include "vdstomgr/storage/sync_access.h"

bool vdstomgr::SyncStorage(CRkStorageManager& storage) {
  auto& state = SyncAccess::StateOf(storage);
  const ScopedLock lock(state.lock);
  if (!state.clusters.IsOpen()) return false;
  state.clusters.Settle();
  return state.data.Sync() && state.clusters.Sync();
}
