#include "vdstomgr/storage/compaction_files.h"
#include "vdstomgr/storage/record_storage_state.h"
#include "vdstomgr/storage/sync_storage.h"

using vdstomgr::CompactionFiles;
using vdstomgr::DeleteUnlessInUse;
using vdstomgr::MoveTo;
using vdstomgr::ScopedLock;

namespace {

/// Puts the new pair in the place of the old one, which stays under its other names; or leaves the
/// old pair where it is and deletes the new one.
bool Swap(const CompactionFiles& files) {
  if (MoveTo(files.data, files.old_data)) {
    if (MoveTo(files.index, files.old_index)) {
      MoveTo(files.new_data, files.data);
      MoveTo(files.new_index, files.index);
      return true;
    }
    MoveTo(files.old_data, files.data);
  }
  files.DeleteNew();
  return false;
}

}  // namespace

/// The bytes are copied with the checksum that they came with: what is damaged stays recognisable.
bool CRkStorageManager::State::CopyRecord(std::size_t position, State& target) {
  const vdstomgr::RecordPlace place = clusters.PlaceAt(position);
  const BYTE* const record = View(place);
  if (record == nullptr && place.IsWithin(header)) return false;
  const std::vector<BYTE> key = clusters.KeyAt(position);
  const bool is_live = record != nullptr && vdstomgr::IsLiveRecord(record, place);
  const bool done = is_live ? target.Append(key, record + header.DataInRecord(),
                                            place.length - header.LeastRecord(), place.crc, false)
                            : target.Append(key, nullptr, 0, 0, false);
  if (record != nullptr) data.EndView();
  return done;
}

bool CRkStorageManager::State::CopyTo(const CString& new_data_path, const CString& new_index_path) {
  constexpr int kCommitted = 2;
  constexpr int kRandomAccess = 3;
  State target;
  clusters.SortIfNeeded();
  bool done =
      CreateStorageFile(new_data_path, header.storage_id, header.key_type, header.key_length);
  if (!done) return false;
  done = header.HasKnownKeys() && target.Load(new_data_path, kCommitted, kRandomAccess);
  const std::size_t size = clusters.Size();
  for (std::size_t position = 0; done && position < size; ++position) {
    done = CopyRecord(position, target);
  }
  // On the device before a name changes: whoever finds the new files may believe them.
  done = done && target.clusters.Sort() && target.data.Sync() && target.clusters.Sync();
  target.Free();
  if (done) return true;
  DeleteUnlessInUse(new_data_path);
  DeleteUnlessInUse(new_index_path);
  return false;
}

bool CRkStorageManager::CompactStorageFile(const char* path) {
  const CompactionFiles files(path);
  State storage;
  if (!storage.Load(path, 2, 3) || !storage.CopyTo(files.new_data, files.new_index)) return false;
  storage.Free();
  files.DeleteOld();
  return Swap(files);
}

bool CRkStorageManager::CompactStorageFileOnline(const char* path, int minimum_count) {
  State& state = *m_state;
  const ScopedLock lock(state.lock);
  if (GetSize() < minimum_count) return true;
  const CompactionFiles files(path);
  if (!state.clusters.IsOpen() || state.data.HasView()) return false;
  if (!state.CopyTo(files.new_data, files.new_index)) return false;
  state.Free();
  if (!Swap(files)) return false;
  if (!state.Load(files.data, state.mapping_mode, state.open_mode)) return false;
  if (vdstomgr::SyncStorage(*this)) files.DeleteOld();
  return true;
}
