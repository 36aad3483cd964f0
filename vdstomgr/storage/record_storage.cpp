#include "vdstomgr/storage/record_storage.h"

#include <algorithm>

#include "vdstomgr/platform/common/crc32.h"
#include "vdstomgr/storage/little_endian.h"
#include "vdstomgr/storage/record_storage_state.h"

using vdstomgr::DataHeader;
using vdstomgr::KeyBytes;
using vdstomgr::KeyOfText;
using vdstomgr::kNumberKey;
using vdstomgr::kStringKey;
using vdstomgr::ScopedLock;

namespace {

DWORD NumberOf(KeyBytes key) {
  return vdstomgr::LoadLittle<DWORD>(key.data());
}

struct NumberKey {
  BYTE bytes[sizeof(DWORD)];
  explicit NumberKey(DWORD key) { vdstomgr::StoreLittle(bytes, key); }
};

}  // namespace

CRkStorageManager::CRkStorageManager() : m_state(std::make_shared<State>()) {}

CRkStorageManager::~CRkStorageManager() = default;

CRkStorageManager::CRkStorageManager(const CRkStorageManager& other) : m_state(other.m_state) {
  const ScopedLock lock(other.m_state->lock);
  if (!m_state->data.IsOpen()) m_state = std::make_shared<State>();
}

CRkStorageManager& CRkStorageManager::operator=(const CRkStorageManager& other) {
  if (this != &other) m_state = CRkStorageManager(other).m_state;
  return *this;
}

bool CRkStorageManager::LoadStorageFile(const char* path, int mapping_mode, int open_mode) {
  const ScopedLock lock(m_state->lock);
  return m_state->Load(path, mapping_mode, open_mode);
}

void CRkStorageManager::FreeStorageFile() {
  const ScopedLock lock(m_state->lock);
  m_state->Free();
}

void CRkStorageManager::Flush() {
  const ScopedLock lock(m_state->lock);
  m_state->data.FlushView();
}

bool CRkStorageManager::Add(DWORD key, const BYTE* data, int length, bool sort) {
  const ScopedLock lock(m_state->lock);
  const DataHeader& header = m_state->header;
  if (header.key_type != kNumberKey || !header.HasKnownKeys()) return false;
  if (length < 0 || (length > 0 && data == nullptr)) return false;
  const auto size = static_cast<DWORD>(length);
  return m_state->Append(NumberKey(key).bytes, data, size, CRkCRC32Generator::GenCRC32(data, size),
                         sort);
}

bool CRkStorageManager::Add(const char* key, const BYTE* data, int length, bool sort) {
  const ScopedLock lock(m_state->lock);
  const DataHeader& header = m_state->header;
  if (key == nullptr || header.key_type != kStringKey) return false;
  if (length < 0 || (length > 0 && data == nullptr)) return false;
  const auto size = static_cast<DWORD>(length);
  return m_state->Append(KeyOfText(key, header.key_length), data, size,
                         CRkCRC32Generator::GenCRC32(data, size), sort);
}

bool CRkStorageManager::Replace(int position, const char* key, const BYTE* data, int length) {
  const ScopedLock lock(m_state->lock);
  if (!m_state->IsPosition(position)) return false;
  vdstomgr::ClusterFile& clusters = m_state->clusters;
  const auto old = static_cast<std::size_t>(position);
  const std::vector<BYTE> old_key = clusters.KeyAt(old);
  const std::uint64_t old_offset = clusters.PlaceAt(old).offset;
  if (!Add(key, data, length, true)) return false;
  const int found = clusters.FindRecord(old_key, old_offset);
  if (found >= 0) m_state->RemoveAt(static_cast<std::size_t>(found));
  return true;
}

bool CRkStorageManager::RemoveAt(int position) {
  const ScopedLock lock(m_state->lock);
  return m_state->IsPosition(position) && m_state->RemoveAt(static_cast<std::size_t>(position));
}

/// The clusters go first: none of them must ever name bytes that no longer count.
bool CRkStorageManager::RemoveAll() {
  const ScopedLock lock(m_state->lock);
  if (m_state->header.key_type != kStringKey || !m_state->clusters.IsOpen()) return false;
  return m_state->clusters.RemoveAll() && m_state->PublishLength(0);
}

int CRkStorageManager::FindDWORD(DWORD key, bool refresh) {
  const ScopedLock lock(m_state->lock);
  if (m_state->header.key_type != kNumberKey) return 0;
  return m_state->Find(NumberKey(key).bytes, refresh);
}

int CRkStorageManager::FindString(const char* key, bool refresh) {
  const ScopedLock lock(m_state->lock);
  if (m_state->header.key_type != kStringKey) return 0;
  if (key == nullptr) return -1;
  return m_state->Find(KeyOfText(key, m_state->header.key_length), refresh);
}

int CRkStorageManager::FindStringAt(const char* prefix, bool refresh) {
  const ScopedLock lock(m_state->lock);
  if (m_state->header.key_type != kStringKey) return 0;
  return prefix == nullptr ? -1 : m_state->FindPrefix(prefix, refresh);
}

DWORD CRkStorageManager::GetKeyAtDWORD(int position) {
  const ScopedLock lock(m_state->lock);
  m_state->clusters.SortIfNeeded();
  if (!m_state->IsPosition(position) || m_state->header.key_length < sizeof(DWORD)) return 0;
  return NumberOf(m_state->clusters.KeyAt(static_cast<std::size_t>(position)));
}

int CRkStorageManager::GetKeyAtString(int position, CString& key) {
  const ScopedLock lock(m_state->lock);
  m_state->clusters.SortIfNeeded();
  key.Empty();
  if (!m_state->IsPosition(position)) return 0;
  const auto bytes = m_state->clusters.KeyAt(static_cast<std::size_t>(position));
  const auto end = std::find(bytes.begin(), bytes.end(), BYTE{0});
  key = std::string(bytes.begin(), end);
  return static_cast<int>(bytes.size());
}

BYTE* CRkStorageManager::GetBuffer(int position, int& length) {
  State& state = *m_state;
  state.lock.Enter();
  if (position == -1) return nullptr;
  length = 0;
  state.clusters.SortIfNeeded();
  if (!state.IsPosition(position)) return nullptr;
  return state.Borrow(static_cast<std::size_t>(position), length);
}

void CRkStorageManager::ReleaseBuffer() {
  m_state->data.EndView();
  m_state->lock.Leave();
}

bool CRkStorageManager::SortStorageCluster() {
  const ScopedLock lock(m_state->lock);
  return m_state->data.IsOpen() && m_state->clusters.Sort();
}

CRkFileArrayManager* CRkStorageManager::GetClusterArray() {
  const ScopedLock lock(m_state->lock);
  return m_state->clusters.Array();
}

int CRkStorageManager::GetSize() {
  const ScopedLock lock(m_state->lock);
  return static_cast<int>(m_state->clusters.Size());
}

DWORD CRkStorageManager::GetStorageID() {
  const ScopedLock lock(m_state->lock);
  return m_state->data.IsOpen() ? m_state->header.storage_id : 0;
}

bool CRkStorageManager::IsFileOpened() {
  return m_state->data.IsOpen();
}

bool CRkStorageManager::IsStorageLocked() {
  return m_state->data.HasView();
}

CString CRkStorageManager::GetStoragePath() {
  const ScopedLock lock(m_state->lock);
  return m_state->data_path;
}

bool CRkStorageManager::RefreshStorageDHF() {
  const ScopedLock lock(m_state->lock);
  return m_state->ReadHeader();
}
