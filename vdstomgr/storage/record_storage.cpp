#include "vdstomgr/storage/record_storage.h"

#include <algorithm>
#include <cerrno>
#include <limits>

#include "vdstomgr/platform/common/crc32.h"
#include "vdstomgr/platform/report/report.h"
#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/storage/little_endian.h"
#include "vdstomgr/storage/record_storage_state.h"
#include "vdstomgr/storage/storage_files.h"

using vdstomgr::DataHeader;
using vdstomgr::kDataHeaderBytes;
using vdstomgr::KeyBytes;
using vdstomgr::KeyOfText;
using vdstomgr::kNumberKey;
using vdstomgr::kStringKey;
using vdstomgr::RecordPlace;
using vdstomgr::ScopedLock;
using vdstomgr::Trace;

namespace {

constexpr const char* kLocked = "파일 자체가 외부에서 Lock이 걸려 열지 못하는 상태임";
/// With two stray letters at its end, as it has always been.
constexpr const char* kEmptyFile = "파일 초기화가 되어 있지 않은 파일ㅇ,ㅁ";

void TraceRefusal(const char* reason) {
  Trace("CRkStorageManager::LoadStorageFile >> %s", vdstomgr::FromUtf8(reason).c_str());
}

void TraceNoHeader() {
  Trace("CRkStorageManager::RefreshStorageDHF >> %s (%d)",
        vdstomgr::FromUtf8("pDHF를 LockFile하지 못함 LastError").c_str(), errno);
}

DWORD NumberOf(KeyBytes key) {
  return vdstomgr::LoadLittle<DWORD>(key.data());
}

struct NumberKey {
  BYTE bytes[sizeof(DWORD)];
  explicit NumberKey(DWORD key) { vdstomgr::StoreLittle(bytes, key); }
};

}  // namespace

bool CRkStorageManager::State::Load(const char* path, int new_mapping_mode, int new_open_mode) {
  const CString new_path(path);
  if (!data.Open(path, new_mapping_mode, new_open_mode)) {
    TraceRefusal(kLocked);
    return false;
  }
  mapping_mode = new_mapping_mode;
  open_mode = new_open_mode;
  const bool is_empty = data.Size() == 0;
  if (is_empty) TraceRefusal(kEmptyFile);
  // A file that was copied may have holes, where even reading may need space.
  if (is_empty || !data.CreateMap(0) || !ReadHeader() ||
      !data.Reserve(0, kDataHeaderBytes + header.data_length)) {
    data.Close();
    return false;
  }
  const CString new_index_path = vdstomgr::IndexPathOf(new_path);
  if (!clusters.Open(new_index_path, header)) return false;
  data_path = new_path;
  index_path = new_index_path;
  return true;
}

void CRkStorageManager::State::Free() {
  clusters.Close();
  data.Close();
}

/// A data length beyond the end of the file is refused: what is added would be put there.
bool CRkStorageManager::State::ReadHeader() {
  const BYTE* const bytes = data.ViewToWrite(0, kDataHeaderBytes);
  if (bytes == nullptr) {
    TraceNoHeader();
    return false;
  }
  const auto decoded = DataHeader::Decode(bytes);
  data.EndView();
  if (!decoded || decoded->data_length > data.Size() - kDataHeaderBytes) return false;
  header = *decoded;
  return true;
}

bool CRkStorageManager::State::PublishLength(std::uint64_t length) {
  BYTE* const bytes = data.ViewToWrite(0, kDataHeaderBytes);
  if (bytes == nullptr) {
    TraceNoHeader();
    return false;
  }
  vdstomgr::PublishLittle(bytes + vdstomgr::kDataLengthAt, length);
  data.EndView();
  header.data_length = length;
  return true;
}

bool CRkStorageManager::State::Append(KeyBytes key, const BYTE* bytes, DWORD length, DWORD crc,
                                      bool sort) {
  if (length > std::numeric_limits<DWORD>::max() - header.LeastRecord()) return false;
  const RecordPlace place{header.data_length, header.LeastRecord() + length, crc};
  const std::uint64_t at = kDataHeaderBytes + place.offset;
  if (!clusters.IsOpen() || !data.Grow(at + place.length)) return false;
  BYTE* const record = data.ViewToWrite(at, place.length);
  if (record == nullptr) return false;
  vdstomgr::EncodeRecord(record, place, header.key_length, key, bytes);
  data.EndView();
  if (!PublishLength(place.offset + place.length)) return false;
  if (clusters.Add(key, place, sort)) return true;
  PublishLength(place.offset);
  return false;
}

BYTE* CRkStorageManager::State::View(const RecordPlace& place) {
  if (!place.IsWithin(header)) return nullptr;
  return data.View(kDataHeaderBytes + place.offset, place.length);
}

BYTE* CRkStorageManager::State::ViewToWrite(const RecordPlace& place) {
  if (!place.IsWithin(header)) return nullptr;
  return data.ViewToWrite(kDataHeaderBytes + place.offset, place.length);
}

/// The cluster goes first: a process killed in between leaves a record that nothing names. The
/// other way round a compaction would find the name and bring the record back without its data.
bool CRkStorageManager::State::RemoveAt(std::size_t position) {
  const RecordPlace place = clusters.PlaceAt(position);
  if (ViewToWrite(place) == nullptr) {
    Trace("CRkStorageManager::LockData >> %s (%d)",
          vdstomgr::FromUtf8("Header를 LockFile하지 못함 LastError").c_str(), errno);
    return false;
  }
  data.EndView();
  if (!clusters.RemoveAt(position)) return false;
  MarkRemoved(place);
  return true;
}

/// Marks and state decide, as in a repair, which would bring back what is not marked: the cluster
/// may be wrong about the checksum or the length, and then the record's own length counts.
void CRkStorageManager::State::MarkRemoved(RecordPlace place) {
  for (const bool is_own_length : {false, true}) {
    BYTE* const record = ViewToWrite(place);
    if (record == nullptr) return;
    const bool is_live = vdstomgr::HasLiveMarks(record, place.length);
    if (is_live) vdstomgr::MarkRemoved(record);
    place.length = vdstomgr::RecordHead::Decode(record).length;
    data.EndView();
    if (is_live || is_own_length) return;
  }
}

int CRkStorageManager::State::Find(KeyBytes key, bool refresh) {
  if (refresh) clusters.SortIfNeeded();
  return clusters.Find(key);
}

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

/// A prefix longer than the keys begins none of them.
int CRkStorageManager::State::FindPrefix(const char* prefix, bool refresh) {
  if (refresh) clusters.SortIfNeeded();
  return clusters.FindPrefix(KeyOfText(prefix, std::size_t{header.key_length} + 1));
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
  const RecordPlace place = state.clusters.PlaceAt(static_cast<std::size_t>(position));
  BYTE* const record = state.View(place);
  if (record == nullptr) {
    Trace("CRkStorageManager::GetBuffer >> %s (%d)",
          vdstomgr::FromUtf8("Header를 LockFile하지 못함 LastError").c_str(), errno);
    return nullptr;
  }
  if (!vdstomgr::IsLiveRecord(record, place)) {
    state.data.EndView();
    return nullptr;
  }
  length = static_cast<int>(place.length - state.header.LeastRecord());
  return record + vdstomgr::RecordHead::kBytes + state.header.key_length + 2;
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
