#pragma once

#include <cstdint>

#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/framework/types.h"
#include "vdstomgr/storage/mapped_file.h"
#include "vdstomgr/storage/stamp.h"

namespace vdstomgr {

/// What a CRkFileArrayManager does, without its lock and its copies: for owners that have a lock of
/// their own. Operations are those of the array.
class UnitFile {
 public:
  static bool Create(const char* path, DWORD array_id, int unit_size);

  bool Open(const CString& path, int wanted_unit_size, int mapping_mode, int open_mode);
  void Close();
  /// Whether a file is claimed, also when it is none that has units.
  bool IsClaimed() const { return file_.IsOpen(); }
  /// Checks the header against the file and starts a new modification stamp.
  bool CheckHeader();
  bool Sync() { return file_.Sync(); }

  /// Whether there are units to work on. After a growth that lost the view, tries to get it back.
  bool IsReady() { return view_ != nullptr || (is_open_ && TakeView()); }
  int Count();
  /// Bytes per unit; 0 when closed.
  int UnitSize() const { return unit_size_; }
  DWORD ArrayId();
  /// The first unit; null when there is nothing to work on.
  BYTE* Units();
  /// The unit at an index below Count, while IsReady.
  BYTE* At(int index) const;

  bool SetCount(int count);
  bool Insert(int index, const BYTE* unit);
  bool Add(const BYTE* unit) { return Insert(Count(), unit); }
  void RemoveAt(int index);
  void RemoveAt(CDWordArray& indices);

  /// What an index compares to know whether its entries still hold: renewed by every change, 0 when
  /// closed, never the same twice in a process.
  DWORD ModificationStamp() const { return stamp_; }
  void RenewModificationStamp();
  /// Renewed whenever units move to other addresses; 0 when closed.
  DWORD ViewStamp() const { return view_stamp_; }

 private:
  std::size_t Unit() const { return static_cast<std::size_t>(unit_size_); }
  DWORD DataBytes() const;
  bool TakeView();
  bool IsCount(int count) const;
  bool MakeRoom(int count);
  /// `fill` writes the gained units before they count.
  template <class Fill>
  bool SetCountAfter(int count, Fill fill);

  MappedFile file_;
  bool is_open_ = false;
  int unit_size_ = 0;
  BYTE* view_ = nullptr;  ///< the whole file; null when closed, or after a failed growth
  std::uint64_t view_bytes_ = 0;
  StampSource stamps_;
  DWORD view_stamp_ = 0;
  DWORD stamp_ = 0;
};

}  // namespace vdstomgr
