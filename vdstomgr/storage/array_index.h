#pragma once

#include <memory>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/types.h"

class CRkFileArrayManager;

/// The units of an array file in the order of a key that lies at a fixed place in each, kept in
/// memory. A root index shows all units; a filtered index those units of another index, its parent,
/// whose key there is one of a set of values, in an order of its own.
///
/// An index rebuilds itself at its next use after a change of the array. It takes the array's lock
/// in each operation and must not outlive its array or its parent. Operations on an index that was
/// not created, or was destroyed, find nothing.
///
/// A key that reaches beyond its unit ends with the unit.
class VDSTO_API CRkFileArrayIndex {
 public:
  enum INDEX_TYPE : int {
    INDEX_DWORD,   ///< four bytes, by their signed 32-bit difference
    INDEX_STRING,  ///< a text up to a zero byte or the key length, ASCII letters in one case
    INDEX_BINARY,  ///< bytes of the key length
    INDEX_CUSTOM   ///< by the caller's function
  };
  /// Compares two entries, that is, pointers to pointers to units: negative, 0 or positive. A
  /// function that contradicts itself gives some order.
  using COMPARE = int (*)(const void* left, const void* right);

  CRkFileArrayIndex();
  virtual ~CRkFileArrayIndex();
  CRkFileArrayIndex(const CRkFileArrayIndex&) = delete;
  CRkFileArrayIndex& operator=(const CRkFileArrayIndex&) = delete;

  /// Makes this a root index. `key_length` and `key_offset` are in bytes; a text with the key
  /// length -1 has no limit.
  void CreateFileArrayIndex(CRkFileArrayManager* manager, INDEX_TYPE key_kind, int key_length,
                            int key_offset, COMPARE compare = nullptr);

  /// Make this a filtered index and answer its number of entries: the parent's units whose key is
  /// one of the values, or all of them when there are no values. The values are copied: those of a
  /// binary index are pointers to as many bytes as the parent's keys have. The parent's key kind
  /// must be the one in the name; otherwise the answer is 0 and nothing changes.
  int CreateFilteredIndexFormStringIndex(CRkFileArrayIndex* parent, CStringArray& values,
                                         INDEX_TYPE key_kind, int key_length, int key_offset,
                                         COMPARE compare = nullptr);
  int CreateFilteredIndexForDWordIndex(CRkFileArrayIndex* parent, CDWordArray& values,
                                       INDEX_TYPE key_kind, int key_length, int key_offset,
                                       COMPARE compare = nullptr);
  int CreateFilteredIndexForBinaryIndex(CRkFileArrayIndex* parent, CPtrArray& values,
                                        INDEX_TYPE key_kind, int key_length, int key_offset,
                                        COMPARE compare = nullptr);

  /// Replace the filter values of one kind, rebuild, and answer the number of entries.
  int SetFilter(CStringArray& values);
  int SetFilter(CDWordArray& values);
  int SetFilter(CPtrArray& values);

  /// Brings the entries up to date.
  void GenerateIndex();
  /// The number of entries.
  int GetSize();

  /// The entries, each the address of a unit. Takes the array's lock and keeps it, until one
  /// ReleaseArray, also when the answer is null: when there are no entries or `refuse` is true.
  const void** GetArray(bool refuse = false);
  /// As GetArray, for the unit at a position; null when there is none.
  const void* GetBuffer(int position);
  /// Leaves the lock that GetArray or GetBuffer took; `modified` when a unit was written.
  void ReleaseArray(bool modified);
  void ReleaseBuffer(bool modified) { ReleaseArray(modified); }

  /// The first position whose key equals the given one, or -1; also -1 when the index is of another
  /// kind. Without `refresh` the entries are brought up to date only if the units have moved.
  int FindDWORD(DWORD key, bool refresh = true);
  int FindString(const char* key, bool refresh = true);
  int FindBinary(const BYTE* key, bool refresh = true);
  /// `key` stands for what units have at the key offset.
  int FindCustom(const void* key, bool refresh = true);

  /// The first and the last position whose key equals the one at `position`; -1 when there is no
  /// such position.
  int FindValueStartIndex(int position, bool refresh = true);
  int FindValueEndIndex(int position);
  /// The number of entries with the key at `position`; 0 when there is no such position.
  int GetValueCount(int position);

  /// (address of the unit at `position` - address of the array's header) / unit size. The header
  /// has 32 bytes: this is the unit's position in the array only for units longer than that.
  int IndexToArray(int position);

  /// Makes every index on the array rebuild itself at its next use.
  void UpdateLastModified();
  /// Gives up the entries and the array. The number of entries stays as it was.
  void Destroy();

 protected:
  /// The array below the root; null when there is none.
  CRkFileArrayManager* GetFileArrayMgr() const;
  /// Compares two of `entries` by this index's key: negative, 0 or positive; 0 for an unknown kind.
  int CompareIndex(const void* const* entries, int left, int right) const;

 private:
  struct State;

  std::unique_ptr<State> m_state;
};
