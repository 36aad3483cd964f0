#pragma once

#include <memory>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/array.h"
#include "vdstomgr/platform/framework/types.h"

class CRkFileArrayManager;

namespace vdstomgr {

class ClusterFile;
class UnitFile;
struct SyncAccess;

/// Returns when the device holds all units, or false when that cannot be told or no file is open.
VDSTO_API bool SyncArray(CRkFileArrayManager& array);

}  // namespace vdstomgr

/// A growable array of units of one fixed size in a file that is mapped as a whole. What has been
/// added is there after the process was killed: a unit is written before the count that makes it
/// visible, and moving units never leaves one without a copy.
///
/// Copies of an open array share its file and view: closing through one closes it for all. A copy
/// of a closed array is an array of its own. One recursive lock guards each operation; GetArray and
/// GetBuffer return with it held, so that the units stay where they are until ReleaseArray.
///
/// Failures answer false, null or 0 and leave the units as they are. Other processes may open the
/// file for reading only.
class VDSTO_API CRkFileArrayManager {
 public:
  /// Creates a file without units: 32 bytes. False when the file exists, when it cannot be written,
  /// and for a unit size below 1.
  static bool CreateFileArray(const char* path, DWORD array_id, int unit_size);

  CRkFileArrayManager();
  /// Closes the file when no copy holds it.
  virtual ~CRkFileArrayManager();
  CRkFileArrayManager(const CRkFileArrayManager& other);
  CRkFileArrayManager& operator=(const CRkFileArrayManager& other);

  /// Opens an existing file whose units have `unit_size` bytes (-1: any). The modes are those of
  /// CRkFileMapper::OpenFile. A failure shows a message box and leaves the array closed; but after
  /// the box for an empty file the file stays claimed until CloseFile.
  bool OpenFile(const char* path, int unit_size = -1, int mapping_mode = 2, int open_mode = 3);
  void CloseFile();

  /// The number of units; 0 when closed.
  int GetSize() const;
  /// What the creator chose; 0 when closed.
  DWORD GetArrayID() const;

  /// Sets the number of units. What is gained holds any bytes; the file grows in steps of 10 MiB
  /// and never shrinks. Pointers to units become invalid. False when closed, when the disk is full
  /// and for a count below 0 or of 4 GiB and more.
  bool SetSize(int count);
  void RemoveAll();

  /// Copies a unit to the end.
  bool Add(const void* unit);
  /// Copies a unit before the one at `index`; false for an index below 0 or above the count.
  bool InsertAt(int index, const void* unit);
  /// Removes a unit; does nothing when there is none at `index`.
  void RemoveAt(int index);
  /// Removes the units at all these indices, which come back sorted. Those without a unit and
  /// repeated ones do no harm.
  void RemoveAt(CDWordArray& indices);

  /// The first unit, after setting the number of units unless `new_size` is -1. Takes the lock and
  /// keeps it, until one ReleaseArray, also when the answer is null: when closed, when `refuse` is
  /// true, or when the size could not be set.
  void* GetArray(int new_size = -1, bool refuse = false);
  /// As GetArray, for the unit at `index`; null when there is none.
  void* GetBuffer(int index, int new_size = -1);
  /// Leaves the lock that GetArray or GetBuffer took; `modified` when a unit was written.
  void ReleaseArray(bool modified);
  void ReleaseBuffer(bool modified) { ReleaseArray(modified); }
  /// As GetArray without the lock: for callers who see to it that nobody changes the size.
  void* GetArrayPtr() const;

 protected:
  friend class CRkFileArrayIndex;
  friend class vdstomgr::ClusterFile;
  friend struct vdstomgr::SyncAccess;

  void LockCriticalSection();
  void UnlockCriticalSection(bool modified);
  /// Checks the header against the file and starts a new modification stamp.
  bool RefreshArrayDHF();

 private:
  struct State;

  /// The array without its lock, which the caller holds (or sees to it that nobody else uses the
  /// array). The reference is good while this object holds the same file.
  vdstomgr::UnitFile& Units() const;

  std::shared_ptr<State> m_state;
};
