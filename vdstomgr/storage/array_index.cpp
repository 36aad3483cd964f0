#include "vdstomgr/storage/array_index.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/report/report.h"
#include "vdstomgr/storage/array_file.h"
#include "vdstomgr/storage/index_key.h"
#include "vdstomgr/storage/little_endian.h"
#include "vdstomgr/storage/sorted_units.h"
#include "vdstomgr/storage/stamp.h"
#include "vdstomgr/storage/unit_file.h"

using vdstomgr::IndexKey;
using vdstomgr::KeyBytes;
using vdstomgr::UnitFile;

namespace {

constexpr std::uintptr_t kHeaderBytes = 32;

std::array<BYTE, sizeof(DWORD)> BytesOf(DWORD number) {
  std::array<BYTE, sizeof(DWORD)> bytes;
  vdstomgr::StoreLittle(bytes.data(), number);
  return bytes;
}

}  // namespace

/// Holds the lock of an index's array, where there is one.
class CRkFileArrayIndex::ArrayLock {
 public:
  explicit ArrayLock(const CRkFileArrayIndex& index) : ArrayLock(index.GetFileArrayMgr()) {}
  explicit ArrayLock(CRkFileArrayManager* array) : array_(array) {
    if (array_ != nullptr) array_->LockCriticalSection();
  }
  ~ArrayLock() {
    if (array_ != nullptr) array_->UnlockCriticalSection(false);
  }
  ArrayLock(const ArrayLock&) = delete;
  ArrayLock& operator=(const ArrayLock&) = delete;

 private:
  CRkFileArrayManager* array_;
};

struct CRkFileArrayIndex::State {
  CRkFileArrayManager* manager = nullptr;  ///< of a root index
  CRkFileArrayIndex* parent = nullptr;     ///< of a filtered index
  std::vector<std::string> texts;          ///< filter values
  std::vector<DWORD> numbers;
  std::vector<std::vector<BYTE>> binaries;

  IndexKey key;
  vdstomgr::SortedUnits entries;
  int count = 0;  ///< of entries; stays when they are given up

  vdstomgr::StampSource stamps;
  DWORD generation_stamp = 0;  ///< of these entries, for the indexes above
  DWORD source_stamp = 0;      ///< of what they were built from
  DWORD view_stamp = 0;        ///< of the view that they point into

  CRkFileArrayManager* Array() const;
  bool IsBelow(const CRkFileArrayIndex* index) const;
  bool HasParentKind(INDEX_TYPE kind) const {
    return parent != nullptr && parent->m_state->key.GetKind() == kind;
  }
  void Bind(CRkFileArrayManager* new_manager, CRkFileArrayIndex* new_parent, IndexKey new_key);
  void ForgetStamps() { generation_stamp = source_stamp = 0; }
  /// Since the stamps were forgotten: a closed array has stamps of 0 too.
  bool IsBuilt() const { return generation_stamp != 0; }
  void Refresh();
  /// Entries are good only while the units stay where they are: without `refresh` they are brought
  /// up to date only when that is over.
  void Prepare(bool refresh);

  void CopyValues(const CStringArray& values) { texts.assign(values.begin(), values.end()); }
  void CopyValues(const CDWordArray& values) { numbers = values; }
  void CopyValues(const CPtrArray& values);

 private:
  void GiveUpEntries();
  void RefreshRoot(UnitFile& array);
  void RefreshFiltered(const UnitFile& array);
  void Rebuild(const UnitFile& array, std::vector<const void*> units, DWORD source);
  std::vector<const void*> FilteredUnits() const;
  std::vector<int> WantedRuns() const;
};

CRkFileArrayManager* CRkFileArrayIndex::State::Array() const {
  const State* state = this;
  while (state->parent != nullptr) state = state->parent->m_state.get();
  return state->manager;
}

/// Whether this index draws on `index`, or is it.
bool CRkFileArrayIndex::State::IsBelow(const CRkFileArrayIndex* index) const {
  if (index->m_state.get() == this) return true;
  return parent != nullptr && parent->m_state->IsBelow(index);
}

void CRkFileArrayIndex::State::Bind(CRkFileArrayManager* new_manager, CRkFileArrayIndex* new_parent,
                                    IndexKey new_key) {
  manager = new_manager;
  parent = new_parent;
  key = new_key;
  ForgetStamps();
}

void CRkFileArrayIndex::State::Refresh() {
  const CRkFileArrayManager* const array = Array();
  if (array == nullptr) return GiveUpEntries();
  if (parent != nullptr) {
    RefreshFiltered(array->Units());
  } else {
    RefreshRoot(array->Units());
  }
}

void CRkFileArrayIndex::State::Prepare(bool refresh) {
  const CRkFileArrayManager* const array = Array();
  if (refresh || array == nullptr || view_stamp != array->Units().ViewStamp()) Refresh();
}

void CRkFileArrayIndex::State::GiveUpEntries() {
  entries.Clear();
  if (parent != nullptr) count = 0;
}

void CRkFileArrayIndex::State::RefreshRoot(UnitFile& array) {
  const int size = array.Count();
  const DWORD stamp = array.ModificationStamp();
  if (IsBuilt() && source_stamp == stamp && view_stamp == array.ViewStamp()) return;
  vdstomgr::Trace("CRkFileArrayIndex::GenerateIndex() : %X != %X",
                  static_cast<unsigned>(source_stamp), static_cast<unsigned>(stamp));
  std::vector<const void*> units(static_cast<std::size_t>(size));
  const BYTE* unit = array.Units();
  for (const void*& entry : units) {
    entry = unit;
    unit += array.UnitSize();
  }
  Rebuild(array, std::move(units), stamp);
}

void CRkFileArrayIndex::State::RefreshFiltered(const UnitFile& array) {
  const State& source = *parent->m_state;
  parent->m_state->Refresh();
  if (IsBuilt() && source_stamp == source.generation_stamp) return;
  Rebuild(array, FilteredUnits(), source.generation_stamp);
}

void CRkFileArrayIndex::State::Rebuild(const UnitFile& array, std::vector<const void*> units,
                                       DWORD source) {
  key.SetUnitSize(array.UnitSize());
  entries.Build(std::move(units), key);
  count = entries.Count();
  source_stamp = source;
  generation_stamp = stamps.New();
  view_stamp = array.ViewStamp();
}

/// The first position of each of the parent's runs that a filter value names, rising.
std::vector<int> CRkFileArrayIndex::State::WantedRuns() const {
  const State& source = *parent->m_state;
  std::vector<int> runs;
  const auto want = [&](KeyBytes value) { runs.push_back(source.entries.Find(value)); };
  switch (source.key.GetKind()) {
    case INDEX_STRING:
      for (const std::string& text : texts) want(source.key.OfText(text.c_str()));
      break;
    case INDEX_DWORD:
      for (const DWORD number : numbers) want(BytesOf(number));
      break;
    default:
      // The parent may have been made anew, with longer keys, since the values were given.
      for (const auto& bytes : binaries) {
        if (bytes.size() >= source.key.Limit()) want(source.key.OfBytes(bytes.data()));
      }
  }
  std::sort(runs.begin(), runs.end());
  runs.erase(std::unique(runs.begin(), runs.end()), runs.end());
  if (!runs.empty() && runs.front() < 0) runs.erase(runs.begin());
  return runs;
}

std::vector<const void*> CRkFileArrayIndex::State::FilteredUnits() const {
  const vdstomgr::SortedUnits& all = parent->m_state->entries;
  const IndexKey& parent_key = parent->m_state->key;
  std::vector<const void*> units;
  if (!parent_key.IsRanked()) return units;
  const auto append = [&](int first, int last) {
    for (int i = first; i <= last; ++i) units.push_back(all.At(i));
  };
  const bool has_values = parent_key.GetKind() == INDEX_STRING  ? !texts.empty()
                          : parent_key.GetKind() == INDEX_DWORD ? !numbers.empty()
                                                                : !binaries.empty();
  if (!has_values) {
    append(0, all.Count() - 1);
    return units;
  }
  for (const int first : WantedRuns()) append(first, all.RunEnd(first));
  return units;
}

void CRkFileArrayIndex::State::CopyValues(const CPtrArray& values) {
  binaries.clear();
  if (!HasParentKind(INDEX_BINARY)) return;
  const std::size_t size = parent->m_state->key.BinarySize();
  for (const void* const value : values) {
    const auto* const bytes = static_cast<const BYTE*>(value);
    if (bytes != nullptr) binaries.emplace_back(bytes, bytes + size);
  }
}

CRkFileArrayIndex::CRkFileArrayIndex() : m_state(std::make_unique<State>()) {}

CRkFileArrayIndex::~CRkFileArrayIndex() = default;

CRkFileArrayManager* CRkFileArrayIndex::GetFileArrayMgr() const {
  return m_state->Array();
}

void CRkFileArrayIndex::CreateFileArrayIndex(CRkFileArrayManager* manager, INDEX_TYPE key_kind,
                                             int key_length, int key_offset, COMPARE compare) {
  const ArrayLock lock(manager);
  m_state->Bind(manager, nullptr, IndexKey(key_kind, key_length, key_offset, compare));
  m_state->Refresh();
}

template <class Values>
int CRkFileArrayIndex::CreateFiltered(CRkFileArrayIndex* parent, INDEX_TYPE parent_kind,
                                      const Values& values, const vdstomgr::IndexKey& key) {
  if (parent == nullptr || parent->m_state->IsBelow(this)) return 0;
  const ArrayLock lock(*parent);
  if (parent->m_state->key.GetKind() != parent_kind) return 0;
  m_state->Bind(nullptr, parent, key);
  return ReplaceFilter(values);
}

template <class Values>
int CRkFileArrayIndex::ReplaceFilter(const Values& values) {
  const ArrayLock lock(*this);
  m_state->CopyValues(values);
  m_state->ForgetStamps();
  m_state->Refresh();
  return m_state->count;
}

int CRkFileArrayIndex::CreateFilteredIndexFormStringIndex(CRkFileArrayIndex* parent,
                                                          CStringArray& values, INDEX_TYPE key_kind,
                                                          int key_length, int key_offset,
                                                          COMPARE compare) {
  return CreateFiltered(parent, INDEX_STRING, values,
                        IndexKey(key_kind, key_length, key_offset, compare));
}

int CRkFileArrayIndex::CreateFilteredIndexForDWordIndex(CRkFileArrayIndex* parent,
                                                        CDWordArray& values, INDEX_TYPE key_kind,
                                                        int key_length, int key_offset,
                                                        COMPARE compare) {
  return CreateFiltered(parent, INDEX_DWORD, values,
                        IndexKey(key_kind, key_length, key_offset, compare));
}

int CRkFileArrayIndex::CreateFilteredIndexForBinaryIndex(CRkFileArrayIndex* parent,
                                                         CPtrArray& values, INDEX_TYPE key_kind,
                                                         int key_length, int key_offset,
                                                         COMPARE compare) {
  return CreateFiltered(parent, INDEX_BINARY, values,
                        IndexKey(key_kind, key_length, key_offset, compare));
}

int CRkFileArrayIndex::SetFilter(CStringArray& values) {
  return ReplaceFilter(values);
}

int CRkFileArrayIndex::SetFilter(CDWordArray& values) {
  return ReplaceFilter(values);
}

int CRkFileArrayIndex::SetFilter(CPtrArray& values) {
  return ReplaceFilter(values);
}

void CRkFileArrayIndex::GenerateIndex() {
  const ArrayLock lock(*this);
  m_state->Refresh();
}

int CRkFileArrayIndex::GetSize() {
  const ArrayLock lock(*this);
  m_state->Refresh();
  return m_state->count;
}

const void** CRkFileArrayIndex::GetArray(bool refuse) {
  if (CRkFileArrayManager* const array = GetFileArrayMgr()) array->LockCriticalSection();
  if (refuse) return nullptr;
  m_state->Refresh();
  return m_state->entries.Data();
}

const void* CRkFileArrayIndex::GetBuffer(int position) {
  if (CRkFileArrayManager* const array = GetFileArrayMgr()) array->LockCriticalSection();
  if (position == -1) return nullptr;
  m_state->Refresh();
  return m_state->entries.Has(position) ? m_state->entries.At(position) : nullptr;
}

void CRkFileArrayIndex::ReleaseArray(bool modified) {
  if (CRkFileArrayManager* const array = GetFileArrayMgr()) array->UnlockCriticalSection(modified);
}

template <class Search>
int CRkFileArrayIndex::Find(INDEX_TYPE kind, bool refresh, const Search& search) {
  const ArrayLock lock(*this);
  m_state->Prepare(refresh);
  const bool can_match = m_state->entries.Count() > 0 && m_state->key.GetKind() == kind;
  return can_match ? search(m_state->entries) : -1;
}

int CRkFileArrayIndex::FindDWORD(DWORD key, bool refresh) {
  return Find(INDEX_DWORD, refresh,
              [&](const auto& entries) { return entries.Find(BytesOf(key)); });
}

int CRkFileArrayIndex::FindString(const char* key, bool refresh) {
  return Find(INDEX_STRING, refresh,
              [&](const auto& entries) { return entries.Find(m_state->key.OfText(key)); });
}

int CRkFileArrayIndex::FindBinary(const BYTE* key, bool refresh) {
  return Find(INDEX_BINARY, refresh,
              [&](const auto& entries) { return entries.Find(m_state->key.OfBytes(key)); });
}

int CRkFileArrayIndex::FindCustom(const void* key, bool refresh) {
  return Find(INDEX_CUSTOM, refresh, [&](const auto& entries) {
    const auto offset = static_cast<std::uintptr_t>(m_state->key.GetOffset());
    const auto unit = reinterpret_cast<std::uintptr_t>(key) - offset;
    return entries.FindCustom(reinterpret_cast<const void*>(unit));
  });
}

int CRkFileArrayIndex::FindValueStartIndex(int position, bool refresh) {
  const ArrayLock lock(*this);
  m_state->Prepare(refresh);
  if (position == 0) return 0;
  return m_state->entries.Has(position) ? m_state->entries.RunStart(position) : -1;
}

int CRkFileArrayIndex::FindValueEndIndex(int position) {
  const ArrayLock lock(*this);
  m_state->Prepare(false);
  return m_state->entries.Has(position) ? m_state->entries.RunEnd(position) : -1;
}

int CRkFileArrayIndex::GetValueCount(int position) {
  const ArrayLock lock(*this);
  m_state->Prepare(false);
  const vdstomgr::SortedUnits& entries = m_state->entries;
  return entries.Has(position) ? entries.RunEnd(position) - entries.RunStart(position) + 1 : 0;
}

int CRkFileArrayIndex::IndexToArray(int position) {
  const ArrayLock lock(*this);
  m_state->Prepare(false);
  if (!m_state->entries.Has(position)) return -1;
  UnitFile& array = GetFileArrayMgr()->Units();
  const auto unit = reinterpret_cast<std::uintptr_t>(m_state->entries.At(position));
  const auto header = reinterpret_cast<std::uintptr_t>(array.Units()) - kHeaderBytes;
  return static_cast<int>((unit - header) / static_cast<std::uintptr_t>(array.UnitSize()));
}

void CRkFileArrayIndex::UpdateLastModified() {
  const ArrayLock lock(*this);
  if (CRkFileArrayManager* const array = GetFileArrayMgr()) {
    array->Units().RenewModificationStamp();
  }
}

void CRkFileArrayIndex::Destroy() {
  const ArrayLock lock(*this);
  m_state->Bind(nullptr, nullptr, IndexKey());
  m_state->entries.Clear();
}

int CRkFileArrayIndex::CompareIndex(const void* const* entries, int left, int right) const {
  const IndexKey& key = m_state->key;
  if (key.IsRanked()) return key.CompareFrom(key.Of(entries[left]), key.Of(entries[right]), 0);
  const bool is_custom = key.GetKind() == INDEX_CUSTOM && key.GetCompare() != nullptr;
  return is_custom ? key.GetCompare()(&entries[left], &entries[right]) : 0;
}
