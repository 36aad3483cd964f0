#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <system_error>

#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/framework/types.h"
#include "vdstomgr/platform/os/file.h"

namespace vdstomgr {

/// What a CRkFileMapper does, without its lock and its copies: for owners that have a lock of their
/// own. Operations are those of the mapper; IsOpen and HasView may be asked by any thread.
class MappedFile {
 public:
  int Step() const { return step_; }
  void SetStep(int bytes) { step_ = bytes; }

  bool Open(const char* path, int mapping_mode, int open_mode);
  bool Close();
  bool IsOpen() const { return is_open_; }
  std::uint64_t Size() const;

  bool CreateMap(DWORD maximum_size);
  void CloseMap();

  /// For reading and writing what is reserved.
  BYTE* View(std::uint64_t offset, DWORD length);
  /// As View, for writing all of it; null also when the disk is full.
  BYTE* ViewToWrite(std::uint64_t offset, DWORD length);
  bool EndView() {
    const bool had_view = HasView();
    has_view_.store(false, std::memory_order_relaxed);
    return had_view;
  }
  bool HasView() const { return has_view_.load(std::memory_order_relaxed); }
  bool FlushView();

  bool Write(std::uint64_t offset, const BYTE* data, int length);
  /// Makes the file longer, in large steps that take no space yet.
  bool Grow(std::uint64_t size);
  /// Sees to it that these bytes of the file can be written through a view; false when the disk is
  /// full. Costs nothing where that is known.
  bool Reserve(std::uint64_t offset, std::uint64_t size) {
    return (offset <= reserved_ && size <= reserved_ - offset) || ReserveMore(offset, size);
  }
  /// Returns when the device holds all that was written, or false.
  bool Sync();

 private:
  std::error_code OpenNative(const char* name, int mapping_mode, int open_mode);
  std::error_code MapFile();
  std::error_code MapWindow(std::uint64_t offset, std::uint64_t size);
  std::error_code ShowWindow(std::uint64_t offset, std::uint64_t size);
  bool IsInWindow(std::uint64_t offset, std::uint64_t size) const;
  std::uint64_t GrownSize(std::uint64_t size) const;
  bool ReserveMore(std::uint64_t offset, std::uint64_t size);
  /// Keeps why the system refused something, for TakeStorageError.
  std::error_code Note(std::error_code error) const;

  std::atomic<int> step_ = 0x6400000;
  std::atomic<bool> is_open_ = false;

  std::unique_ptr<os::ExclusiveFile> file_;  ///< null when closed
  CString path_;
  int mapping_mode_ = 2;
  std::uint64_t known_size_ = 0;
  std::uint64_t reserved_ = 0;  ///< so many bytes from the beginning on are known to have space

  bool has_map_ = false;
  DWORD requested_size_ = 0;    ///< of the map; 0: the whole file
  std::uint64_t map_size_ = 0;  ///< never more than the file's
  /// The part of the map that is in memory: all of it where the address space has room. Kept from
  /// view to view.
  std::unique_ptr<os::Mapping> window_;
  std::uint64_t window_offset_ = 0;

  std::atomic<bool> has_view_ = false;
  std::uint64_t view_offset_ = 0;
  DWORD view_length_ = 0;
};

}  // namespace vdstomgr
