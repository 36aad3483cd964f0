#include "vdstomgr/storage/record_storage_state.h"

#include <cassert>
#include <cerrno>
#include <limits>

#include "vdstomgr/platform/report/report.h"
#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/storage/little_endian.h"
#include "vdstomgr/storage/storage_files.h"

using vdstomgr::DataHeader;
using vdstomgr::kDataHeaderBytes;
using vdstomgr::KeyBytes;
using vdstomgr::KeyOfText;
using vdstomgr::RecordPlace;
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

void TraceNoRecord(const char* operation) {
  Trace("CRkStorageManager::%s >> %s (%d)", operation,
        vdstomgr::FromUtf8("Header를 LockFile하지 못함 LastError").c_str(), errno);
}

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
  assert(key.size() <= header.key_length);
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

BYTE* CRkStorageManager::State::Borrow(std::size_t position, int& length) {
  const RecordPlace place = clusters.PlaceAt(position);
  BYTE* const record = View(place);
  if (record == nullptr) {
    TraceNoRecord("GetBuffer");
    return nullptr;
  }
  if (!vdstomgr::IsLiveRecord(record, place)) {
    data.EndView();
    return nullptr;
  }
  length = static_cast<int>(place.length - header.LeastRecord());
  return record + header.DataInRecord();
}

/// The cluster goes first: a process killed in between leaves a record that nothing names. The
/// other way round a compaction would find the name and bring the record back without its data.
bool CRkStorageManager::State::RemoveAt(std::size_t position) {
  const RecordPlace place = clusters.PlaceAt(position);
  if (ViewToWrite(place) == nullptr) {
    TraceNoRecord("LockData");
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

/// A prefix longer than the keys begins none of them.
int CRkStorageManager::State::FindPrefix(const char* prefix, bool refresh) {
  if (refresh) clusters.SortIfNeeded();
  return clusters.FindPrefix(KeyOfText(prefix, std::size_t{header.key_length} + 1));
}
