#pragma once

#include <cstdint>
#include <memory>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/types.h"

class CRkFileMapper;

namespace vdstomgr {

struct SyncAccess;

/// Returns when the device holds all that was written through the mapper, or false when that
/// cannot be told. False when no file is open.
VDSTO_API bool SyncFile(CRkFileMapper& mapper);

}  // namespace vdstomgr

/// One file, mapped into memory, and at most one view of it. The file grows in large steps and
/// never shrinks. While it is open no other object and no other process can open it for writing;
/// readers are let in.
///
/// Copies of an open mapper share its file, map and view: closing through one closes it for all.
/// A copy of a closed mapper is a mapper of its own. Each operation takes the lock of what is
/// shared; assigning to a mapper that another thread is using is the caller's race.
///
/// Failures answer false, null or 0 and leave the object usable.
class VDSTO_API CRkFileMapper {
 public:
  CRkFileMapper();
  /// Closes the file when no copy holds it.
  virtual ~CRkFileMapper();
  CRkFileMapper(const CRkFileMapper& other);
  CRkFileMapper& operator=(const CRkFileMapper& other);

  /// The step in bytes in which the file grows: 100 MiB unless set. Files cannot grow by steps
  /// below 1.
  void SetUnitExtensionSize(int bytes);

  /// Opens an existing file for reading and writing. `mapping_mode` 1 asks for pages that the
  /// system does not cache, 2 for committed ones; `open_mode` 1 for unbuffered writes, 2 for
  /// writes that go through to the device; any other value for nothing special. False when a file
  /// is open already; otherwise a failure shows a message box.
  bool OpenFile(const char* path, int mapping_mode = 2, int open_mode = 3);

  /// Makes the file accessible to LockFile: its first `maximum_size` bytes, to which a shorter
  /// file grows, or all of it when that is 0. False when no file is open, when there is a map
  /// already, and for an empty file. `name` is not used.
  bool CreateMap(DWORD maximum_size, const char* name);

  /// The byte at `offset` of a view that reaches `length` bytes on, or to the end of the map when
  /// that is 0. Good until UnlockFile. Null without a map, while there is a view (views do not
  /// nest), for bytes beyond the file or the map, and when the disk has no space for the view, all
  /// of which may be written. No system call for what has been viewed before.
  BYTE* LockFile(std::uint64_t offset, DWORD length);
  /// Ends the view; false when there is none.
  bool UnlockFile();

  /// Asks the system to write out the view, without waiting. True with a map, also when there is
  /// no view to flush.
  bool FlushFile();

  /// Ends view and map.
  void CloseMap();
  /// Ends view and map and closes the file; false when none is open.
  bool CloseFile();

  /// Copies `length` bytes into the file at `offset`, growing it first. False when it cannot grow
  /// or the disk is full, and when the bytes cannot be viewed, also because there is a view
  /// already: view and map are then closed, on purpose.
  bool WriteFileData(std::uint64_t offset, const BYTE* data, int length);

  /// Makes the file at least `size` bytes long: a longer one stays, a shorter one grows to
  /// (`size` / step + 1) steps, an exact multiple too. What it gains takes space on the disk as it
  /// is viewed or written. False while a view is held and for a length that the system refuses; the
  /// file keeps its length then.
  bool SetFileSize(std::uint64_t size);

  /// Whether there is an open file.
  bool IsFileOpened() const;
  /// The file's length in bytes as the system knows it now; 0 when no file is open.
  std::uint64_t GetFileSize() const;
  /// Whether there is a view.
  bool IsLocked() const;

 private:
  friend struct vdstomgr::SyncAccess;

  struct State;
  std::shared_ptr<State> m_state;
};
