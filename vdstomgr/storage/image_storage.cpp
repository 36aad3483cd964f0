#include "vdstomgr/storage/image_storage.h"

#include <limits>

#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/os/lock.h"
#include "vdstomgr/platform/utility/file_ex.h"
#include "vdstomgr/platform/utility/utility_lib.h"
#include "vdstomgr/storage/key_order.h"
#include "vdstomgr/storage/loan_table.h"
#include "vdstomgr/storage/record_storage.h"
#include "vdstomgr/storage/storage_files.h"
#include "vdstomgr/storage/sync_access.h"
#include "vdstomgr/storage/sync_storage.h"

using vdstomgr::ScopedLock;

namespace {

constexpr WORD kImageKeyLength = 44;

}  // namespace

struct CRkPhotoImageStorage::State {
  vdstomgr::RecursiveLock lock;
  CRkStorageManager storage;
  bool opened = false;

  /// The storage's buffer of the image, to be released also when the answer is empty, or nothing
  /// when there is no such image.
  bool Borrow(const char* key, bool refresh, CBinData& data);
};

/// A lock held, and the image that was found under it, if any.
struct CRkPhotoImageStorage::Loan {
  std::shared_ptr<State> owner;
  bool has_buffer = false;

  static vdstomgr::LoanTable<Loan>& Table() {
    static auto& table = *new vdstomgr::LoanTable<Loan>;
    return table;
  }

  static Loan Begin(const std::shared_ptr<State>& owner, const char* key, bool refresh,
                    CBinData& data) {
    owner->lock.Enter();
    data.Reset();
    return {owner, owner->Borrow(key, refresh, data)};
  }

  void End() const {
    if (has_buffer) owner->storage.ReleaseBuffer();
    owner->lock.Leave();
  }
};

bool CRkPhotoImageStorage::State::Borrow(const char* key, bool refresh, CBinData& data) {
  if (key == nullptr || !opened) return false;
  const int position = storage.FindString(key, refresh);
  if (position == -1) return false;
  int length = 0;
  BYTE* const bytes = storage.GetBuffer(position, length);
  if (bytes != nullptr && length != 0) data.SetPointer(bytes, static_cast<DWORD>(length));
  return true;
}

CRkPhotoImageStorage::CRkPhotoImageStorage() : m_state(std::make_shared<State>()) {}

CRkPhotoImageStorage::~CRkPhotoImageStorage() = default;

CRkPhotoImageStorage::CRkPhotoImageStorage(const CRkPhotoImageStorage& other)
    : m_state(other.m_state) {
  const ScopedLock lock(other.m_state->lock);
  if (!m_state->opened) m_state = std::make_shared<State>();
}

CRkPhotoImageStorage& CRkPhotoImageStorage::operator=(const CRkPhotoImageStorage& other) {
  if (this != &other) m_state = CRkPhotoImageStorage(other).m_state;
  return *this;
}

bool CRkPhotoImageStorage::CreateFileA(const char* path, DWORD storage_id) {
  const ScopedLock lock(m_state->lock);
  return CRkStorageManager::CreateStorageFile(path, storage_id, vdstomgr::kStringKey,
                                              kImageKeyLength);
}

bool CRkPhotoImageStorage::OpenFile(const char* path, int mapping_mode, int open_mode) {
  const ScopedLock lock(m_state->lock);
  return m_state->opened = m_state->storage.LoadStorageFile(path, mapping_mode, open_mode);
}

void CRkPhotoImageStorage::Flush() {
  const ScopedLock lock(m_state->lock);
  m_state->storage.Flush();
}

void CRkPhotoImageStorage::CloseFile() {
  const ScopedLock lock(m_state->lock);
  if (m_state->opened) m_state->storage.FreeStorageFile();
  m_state->opened = false;
}

bool CRkPhotoImageStorage::DeleteFileA() {
  const ScopedLock lock(m_state->lock);
  const CString path = m_state->storage.GetStoragePath();
  return !m_state->opened && !path.IsEmpty() && vdstomgr::DeleteStorageFiles(path);
}

bool CRkPhotoImageStorage::IsImage(const char* key, bool refresh, int) {
  const ScopedLock lock(m_state->lock);
  return m_state->opened && m_state->storage.FindString(key, refresh) != -1;
}

bool CRkPhotoImageStorage::SetImage(const char* key, const char* file_path, bool replace,
                                    bool refresh, int reserved) {
  CBinData data;
  return CUtilityLib::LoadFileData(file_path, data) &&
         SetImage(key, data, replace, refresh, reserved);
}

bool CRkPhotoImageStorage::SetImage(const char* key, CBinData& data, bool replace, bool refresh,
                                    int reserved) {
  if (data.GetLength() > static_cast<DWORD>(std::numeric_limits<int>::max())) return false;
  return SetImage(key, data.GetData(), static_cast<int>(data.GetLength()), replace, refresh,
                  reserved);
}

bool CRkPhotoImageStorage::SetImage(const char* key, const BYTE* data, int length, bool replace,
                                    bool refresh, int) {
  const ScopedLock lock(m_state->lock);
  CRkStorageManager& storage = m_state->storage;
  if (!m_state->opened) return false;
  const int old = replace ? storage.FindString(key, refresh) : -1;
  return old == -1 ? storage.Add(key, data, length, true) : storage.Replace(old, key, data, length);
}

bool CRkPhotoImageStorage::DelImage(const char* key, bool refresh) {
  const ScopedLock lock(m_state->lock);
  CRkStorageManager& storage = m_state->storage;
  if (!m_state->opened) return false;
  int found = storage.FindStringAt(key, refresh);
  while (found != -1 && storage.RemoveAt(found)) found = storage.FindStringAt(key, refresh);
  return true;
}

DWORD CRkPhotoImageStorage::Lock_Image(const char* key, CBinData& data, bool refresh, int) {
  return Loan::Table().Lend(Loan::Begin(m_state, key, refresh, data));
}

void CRkPhotoImageStorage::Free_Image(DWORD handle) {
  if (const auto loan = Loan::Table().TakeBack(handle)) loan->End();
}

bool CRkPhotoImageStorage::GetImage(const char* key, CBinData& data, bool refresh, int) {
  CBinData lent;
  const Loan loan = Loan::Begin(m_state, key, refresh, lent);
  data.SetData(lent.GetData(), lent.GetLength());
  loan.End();
  return !data.IsEmpty();
}

bool CRkPhotoImageStorage::GetImageToFile(const char* key, const char* file_path, bool refresh,
                                          int) {
  CBinData lent;
  const Loan loan = Loan::Begin(m_state, key, refresh, lent);
  CFileEx file;
  const UINT flags = CFileEx::modeCreate | CFileEx::modeWrite | CFileEx::typeBinary;
  const bool written = !lent.IsEmpty() && file.Open(file_path, flags) &&
                       file.Write(lent.GetData(), lent.GetLength());
  loan.End();
  return file.Close() && written;
}

void CRkPhotoImageStorage::ResetImage() {
  const ScopedLock lock(m_state->lock);
  m_state->storage.RemoveAll();
}

int CRkPhotoImageStorage::GetSize() {
  return m_state->storage.GetSize();
}

void CRkPhotoImageStorage::ClusterSort() {
  m_state->storage.SortStorageCluster();
}

bool CRkPhotoImageStorage::ReduceData(int minimum_count) {
  const ScopedLock lock(m_state->lock);
  m_state->storage.CompactStorageFileOnline(m_state->storage.GetStoragePath(), minimum_count);
  return true;
}

bool vdstomgr::SyncStorage(CRkPhotoImageStorage& images) {
  auto& state = SyncAccess::StateOf(images);
  const ScopedLock lock(state.lock);
  return SyncStorage(state.storage);
}
