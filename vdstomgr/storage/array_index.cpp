#include "vdstomgr/storage/array_index.h"

#include <cstdint>

#include "vdstomgr/storage/array_file.h"
#include "vdstomgr/storage/array_format.h"
#include "vdstomgr/storage/array_index_state.h"

using vdstomgr::BytesOf;
using vdstomgr::IndexKey;
using vdstomgr::UnitFile;

CRkFileArrayIndex::CRkFileArrayIndex() : m_state(std::make_unique<State>()) {}

CRkFileArrayIndex::~CRkFileArrayIndex() = default;

CRkFileArrayManager* CRkFileArrayIndex::GetFileArrayMgr() const {
  return m_state->Array();
}

void CRkFileArrayIndex::CreateFileArrayIndex(CRkFileArrayManager* manager, INDEX_TYPE key_kind,
                                             int key_length, int key_offset, COMPARE compare) {
  const State::ArrayLock lock(manager);
  m_state->Bind(manager, nullptr, IndexKey(key_kind, key_length, key_offset, compare));
  m_state->Refresh();
}

int CRkFileArrayIndex::CreateFilteredIndexFormStringIndex(CRkFileArrayIndex* parent,
                                                          CStringArray& values, INDEX_TYPE key_kind,
                                                          int key_length, int key_offset,
                                                          COMPARE compare) {
  return m_state->FilterOn(parent, INDEX_STRING, values,
                           IndexKey(key_kind, key_length, key_offset, compare));
}

int CRkFileArrayIndex::CreateFilteredIndexForDWordIndex(CRkFileArrayIndex* parent,
                                                        CDWordArray& values, INDEX_TYPE key_kind,
                                                        int key_length, int key_offset,
                                                        COMPARE compare) {
  return m_state->FilterOn(parent, INDEX_DWORD, values,
                           IndexKey(key_kind, key_length, key_offset, compare));
}

int CRkFileArrayIndex::CreateFilteredIndexForBinaryIndex(CRkFileArrayIndex* parent,
                                                         CPtrArray& values, INDEX_TYPE key_kind,
                                                         int key_length, int key_offset,
                                                         COMPARE compare) {
  return m_state->FilterOn(parent, INDEX_BINARY, values,
                           IndexKey(key_kind, key_length, key_offset, compare));
}

int CRkFileArrayIndex::SetFilter(CStringArray& values) {
  return m_state->Filter(values);
}

int CRkFileArrayIndex::SetFilter(CDWordArray& values) {
  return m_state->Filter(values);
}

int CRkFileArrayIndex::SetFilter(CPtrArray& values) {
  return m_state->Filter(values);
}

void CRkFileArrayIndex::GenerateIndex() {
  const State::ArrayLock lock(*m_state);
  m_state->Refresh();
}

int CRkFileArrayIndex::GetSize() {
  const State::ArrayLock lock(*m_state);
  m_state->Refresh();
  return m_state->count;
}

const void** CRkFileArrayIndex::GetArray(bool refuse) {
  State::ArrayLock::Take(GetFileArrayMgr());
  if (refuse) return nullptr;
  m_state->Refresh();
  return m_state->entries.Data();
}

const void* CRkFileArrayIndex::GetBuffer(int position) {
  State::ArrayLock::Take(GetFileArrayMgr());
  if (position == -1) return nullptr;
  m_state->Refresh();
  return m_state->entries.Has(position) ? m_state->entries.At(position) : nullptr;
}

void CRkFileArrayIndex::ReleaseArray(bool modified) {
  State::ArrayLock::Release(GetFileArrayMgr(), modified);
}

int CRkFileArrayIndex::FindDWORD(DWORD key, bool refresh) {
  return m_state->Find(INDEX_DWORD, refresh,
                       [&](const auto& entries) { return entries.Find(BytesOf(key)); });
}

int CRkFileArrayIndex::FindString(const char* key, bool refresh) {
  return m_state->Find(INDEX_STRING, refresh,
                       [&](const auto& entries) { return entries.Find(m_state->key.OfText(key)); });
}

int CRkFileArrayIndex::FindBinary(const BYTE* key, bool refresh) {
  return m_state->Find(INDEX_BINARY, refresh, [&](const auto& entries) {
    return entries.Find(m_state->key.OfBytes(key));
  });
}

int CRkFileArrayIndex::FindCustom(const void* key, bool refresh) {
  return m_state->Find(INDEX_CUSTOM, refresh, [&](const auto& entries) {
    const auto offset = static_cast<std::uintptr_t>(m_state->key.GetOffset());
    const auto unit = reinterpret_cast<std::uintptr_t>(key) - offset;
    return entries.FindCustom(reinterpret_cast<const void*>(unit));
  });
}

int CRkFileArrayIndex::FindValueStartIndex(int position, bool refresh) {
  const State::ArrayLock lock(*m_state);
  m_state->Prepare(refresh);
  if (position == 0) return 0;
  return m_state->entries.Has(position) ? m_state->entries.RunStart(position) : -1;
}

int CRkFileArrayIndex::FindValueEndIndex(int position) {
  const State::ArrayLock lock(*m_state);
  m_state->Prepare(false);
  return m_state->entries.Has(position) ? m_state->entries.RunEnd(position) : -1;
}

int CRkFileArrayIndex::GetValueCount(int position) {
  const State::ArrayLock lock(*m_state);
  m_state->Prepare(false);
  const vdstomgr::SortedUnits& entries = m_state->entries;
  return entries.Has(position) ? entries.RunEnd(position) - entries.RunStart(position) + 1 : 0;
}

int CRkFileArrayIndex::IndexToArray(int position) {
  const State::ArrayLock lock(*m_state);
  m_state->Prepare(false);
  if (!m_state->entries.Has(position)) return -1;
  UnitFile& array = GetFileArrayMgr()->Units();
  const auto unit = reinterpret_cast<std::uintptr_t>(m_state->entries.At(position));
  const auto header = reinterpret_cast<std::uintptr_t>(array.Units()) - vdstomgr::kArrayHeaderBytes;
  return static_cast<int>((unit - header) / static_cast<std::uintptr_t>(array.UnitSize()));
}

void CRkFileArrayIndex::UpdateLastModified() {
  const State::ArrayLock lock(*m_state);
  if (CRkFileArrayManager* const array = GetFileArrayMgr()) {
    array->Units().RenewModificationStamp();
  }
}

void CRkFileArrayIndex::Destroy() {
  const State::ArrayLock lock(*m_state);
  m_state->Bind(nullptr, nullptr, IndexKey());
  m_state->entries.Clear();
}

int CRkFileArrayIndex::CompareIndex(const void* const* entries, int left, int right) const {
  const IndexKey& key = m_state->key;
  if (key.IsRanked()) return key.CompareFrom(key.Of(entries[left]), key.Of(entries[right]), 0);
  const bool is_custom = key.GetKind() == INDEX_CUSTOM && key.GetCompare() != nullptr;
  return is_custom ? key.GetCompare()(&entries[left], &entries[right]) : 0;
}
