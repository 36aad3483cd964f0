#pragma once

#include <array>
#include <string>
#include <vector>

#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/storage/array_file.h"
#include "vdstomgr/storage/array_index.h"
#include "vdstomgr/storage/index_key.h"
#include "vdstomgr/storage/little_endian.h"
#include "vdstomgr/storage/sorted_units.h"
#include "vdstomgr/storage/stamp.h"
#include "vdstomgr/storage/unit_file.h"

namespace vdstomgr {

/// A number as a key that lies in a unit.
inline std::array<BYTE, sizeof(DWORD)> BytesOf(DWORD number) {
  std::array<BYTE, sizeof(DWORD)> bytes;
  StoreLittle(bytes.data(), number);
  return bytes;
}

}  // namespace vdstomgr

/// What an index is made of. Members are called with the array's lock held, but those that say that
/// they take it.
struct CRkFileArrayIndex::State {
  /// Holds the lock of an index's array, where there is one.
  class ArrayLock {
   public:
    explicit ArrayLock(const State& index) : ArrayLock(index.Array()) {}
    explicit ArrayLock(CRkFileArrayManager* array) : array_(array) { Take(array_); }
    ~ArrayLock() { Release(array_, false); }
    ArrayLock(const ArrayLock&) = delete;
    ArrayLock& operator=(const ArrayLock&) = delete;

    static void Take(CRkFileArrayManager* array) {
      if (array != nullptr) array->LockCriticalSection();
    }
    static void Release(CRkFileArrayManager* array, bool modified) {
      if (array != nullptr) array->UnlockCriticalSection(modified);
    }

   private:
    CRkFileArrayManager* array_;
  };

  CRkFileArrayManager* manager = nullptr;  ///< of a root index
  State* parent = nullptr;                 ///< of a filtered index
  std::vector<std::string> texts;          ///< filter values
  std::vector<DWORD> numbers;
  std::vector<std::vector<BYTE>> binaries;

  vdstomgr::IndexKey key;
  vdstomgr::SortedUnits entries;
  int count = 0;  ///< of entries; stays when they are given up

  vdstomgr::StampSource stamps;
  DWORD generation_stamp = 0;  ///< of these entries, for the indexes above
  DWORD source_stamp = 0;      ///< of what they were built from
  DWORD view_stamp = 0;        ///< of the view that they point into

  /// The array below the root; null when there is none. May be asked without the lock.
  CRkFileArrayManager* Array() const;
  /// Whether this index draws on `other`, or is it.
  bool IsBelow(const State* other) const;
  void Bind(CRkFileArrayManager* new_manager, State* new_parent, const vdstomgr::IndexKey& new_key);

  void Refresh();
  /// Entries are good only while the units stay where they are: without `refresh` they are brought
  /// up to date only when that is over.
  void Prepare(bool refresh);

  /// Replaces the filter values of one kind, rebuilds, and answers the number of entries. Takes the
  /// lock.
  template <class Values>
  int Filter(const Values& values) {
    const ArrayLock lock(*this);
    CopyValues(values);
    ForgetStamps();
    Refresh();
    return count;
  }
  /// Makes this a filtered index and filters; does nothing and answers 0 when the parent's keys are
  /// of another kind, and when it is this index or draws on it. Takes the lock.
  template <class Values>
  int FilterOn(const CRkFileArrayIndex* new_parent, INDEX_TYPE parent_kind, const Values& values,
               const vdstomgr::IndexKey& new_key) {
    State* const source = new_parent != nullptr ? new_parent->m_state.get() : nullptr;
    if (source == nullptr || source->IsBelow(this)) return 0;
    const ArrayLock lock(*source);
    if (source->key.GetKind() != parent_kind) return 0;
    Bind(nullptr, source, new_key);
    return Filter(values);
  }
  /// What `search` answers for the entries; -1 when there are none or their key is of another kind.
  /// Takes the lock.
  template <class Search>
  int Find(INDEX_TYPE kind, bool refresh, const Search& search) {
    const ArrayLock lock(*this);
    Prepare(refresh);
    return entries.Count() > 0 && key.GetKind() == kind ? search(entries) : -1;
  }

 private:
  bool HasParentKind(INDEX_TYPE kind) const {
    return parent != nullptr && parent->key.GetKind() == kind;
  }
  void ForgetStamps() { generation_stamp = source_stamp = 0; }
  /// Since the stamps were forgotten: a closed array has stamps of 0 too.
  bool IsBuilt() const { return generation_stamp != 0; }

  void CopyValues(const CStringArray& values) { texts.assign(values.begin(), values.end()); }
  void CopyValues(const CDWordArray& values) { numbers = values; }
  void CopyValues(const CPtrArray& values);

  void GiveUpEntries();
  void RefreshRoot(vdstomgr::UnitFile& array);
  void RefreshFiltered(const vdstomgr::UnitFile& array);
  void Rebuild(const vdstomgr::UnitFile& array, std::vector<const void*> units, DWORD source);
  bool HasValues() const;
  std::vector<const void*> FilteredUnits() const;
  std::vector<int> WantedRuns() const;
};
