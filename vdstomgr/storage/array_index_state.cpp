#include "vdstomgr/storage/array_index_state.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/report/report.h"

using vdstomgr::KeyBytes;
using vdstomgr::UnitFile;

CRkFileArrayManager* CRkFileArrayIndex::State::Array() const {
  const State* state = this;
  while (state->parent != nullptr) state = state->parent;
  return state->manager;
}

bool CRkFileArrayIndex::State::IsBelow(const State* other) const {
  return other == this || (parent != nullptr && parent->IsBelow(other));
}

void CRkFileArrayIndex::State::Bind(CRkFileArrayManager* new_manager, State* new_parent,
                                    const vdstomgr::IndexKey& new_key) {
  assert(new_manager == nullptr || new_parent == nullptr);
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
  parent->Refresh();
  if (IsBuilt() && source_stamp == parent->generation_stamp) return;
  Rebuild(array, FilteredUnits(), parent->generation_stamp);
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
  std::vector<int> runs;
  const auto want = [&](KeyBytes value) { runs.push_back(parent->entries.Find(value)); };
  switch (parent->key.GetKind()) {
    case INDEX_STRING:
      for (const std::string& text : texts) want(parent->key.OfText(text.c_str()));
      break;
    case INDEX_DWORD:
      for (const DWORD number : numbers) want(vdstomgr::BytesOf(number));
      break;
    default:
      // The parent may have been made anew, with longer keys, since the values were given.
      for (const auto& bytes : binaries) {
        if (bytes.size() >= parent->key.Limit()) want(parent->key.OfBytes(bytes.data()));
      }
  }
  std::sort(runs.begin(), runs.end());
  runs.erase(std::unique(runs.begin(), runs.end()), runs.end());
  if (!runs.empty() && runs.front() < 0) runs.erase(runs.begin());
  return runs;
}

/// Whether there are filter values of the parent's kind.
bool CRkFileArrayIndex::State::HasValues() const {
  switch (parent->key.GetKind()) {
    case INDEX_STRING:
      return !texts.empty();
    case INDEX_DWORD:
      return !numbers.empty();
    default:
      return !binaries.empty();
  }
}

std::vector<const void*> CRkFileArrayIndex::State::FilteredUnits() const {
  const vdstomgr::SortedUnits& all = parent->entries;
  std::vector<const void*> units;
  if (!parent->key.IsRanked()) return units;
  const auto append = [&](int first, int last) {
    for (int i = first; i <= last; ++i) units.push_back(all.At(i));
  };
  if (!HasValues()) {
    append(0, all.Count() - 1);
    return units;
  }
  for (const int first : WantedRuns()) append(first, all.RunEnd(first));
  return units;
}

void CRkFileArrayIndex::State::CopyValues(const CPtrArray& values) {
  binaries.clear();
  if (!HasParentKind(INDEX_BINARY)) return;
  const std::size_t size = parent->key.BinarySize();
  for (const void* const value : values) {
    const auto* const bytes = static_cast<const BYTE*>(value);
    if (bytes != nullptr) binaries.emplace_back(bytes, bytes + size);
  }
}
