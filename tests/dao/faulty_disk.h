#pragma once

#include <sqlite3.h>

#include <cerrno>
#include <memory>
#include <string>

#include "vdstomgr/platform/os/file.h"

#if defined(_WIN32)
constexpr const char* kSystemLayer = "win32";
#else
constexpr const char* kSystemLayer = "unix";
#endif

/// The disk below the database for as long as it lives: the library's file system and the engine's
/// own file layer, the cipher included. Its calls fail on demand. Databases are opened after it is
/// made and closed before it goes.
class FaultyDisk : public vdstomgr::os::ForwardingFileSystem {
 public:
  enum class Fault {
    Once,        ///< one call fails with an error of the device
    FromThenOn,  ///< that call and all after it
    Full         ///< from that call on nothing new fits; what is there can be read and overwritten
  };

  FaultyDisk() : ForwardingFileSystem(vdstomgr::os::SystemFiles()) {
    sqlite3_initialize();
    real_ = sqlite3_vfs_find(kSystemLayer);
    vfs_ = *real_;
    vfs_.zName = "faulty";
    vfs_.pAppData = this;
    vfs_.szOsFile += static_cast<int>(sizeof(Handle));
    vfs_.xOpen = OpenFile;
    vfs_.xDelete = CallSystem<&sqlite3_vfs::xDelete, SQLITE_IOERR_DELETE, const char*, int>;
    vfs_.xAccess = CallSystem<&sqlite3_vfs::xAccess, SQLITE_IOERR_ACCESS, const char*, int, int*>;
    sqlite3_vfs_register(&vfs_, 0);
    sqlite3mc_vfs_create("faulty", 1);
    vdstomgr::os::SetFiles(this);
  }
  ~FaultyDisk() override {
    vdstomgr::os::SetFiles(nullptr);
    sqlite3mc_vfs_destroy("multipleciphers-faulty");
    sqlite3_vfs_unregister(&vfs_);
  }

  /// Lets the call with this number fail; the first is 1.
  void FailAt(int call, Fault fault) {
    calls_ = 0;
    fail_at_ = call;
    fault_ = fault;
  }
  void Heal() { FailAt(0, Fault::Once); }
  bool HasFailed() const { return fail_at_ > 0 && calls_ >= fail_at_; }
  int OpenFiles() const { return open_files_; }

  std::error_code CreateNew(const std::string& path, vdstomgr::os::Caching caching,
                            std::unique_ptr<vdstomgr::os::ExclusiveFile>& file) override {
    return Fails(true) ? Error() : ForwardingFileSystem::CreateNew(path, caching, file);
  }
  std::error_code Delete(const std::string& path) override {
    return Fails(false) ? Error() : ForwardingFileSystem::Delete(path);
  }
  std::error_code Look(const std::string& path, vdstomgr::os::NameKind& kind) override {
    return Fails(false) ? Error() : ForwardingFileSystem::Look(path, kind);
  }

 private:
  using Methods = sqlite3_io_methods;

  /// The engine's file; the real one follows it in memory.
  struct Handle : sqlite3_file {
    FaultyDisk* disk;

    sqlite3_file* Real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
  };

  /// What the engine asks the system for after a failure.
  void TellSystemError() const {
#if defined(_WIN32)
    SetLastError(fault_ == Fault::Full ? ERROR_DISK_FULL : ERROR_IO_DEVICE);
#else
    errno = Error().default_error_condition().value();
#endif
  }

  static FaultyDisk& DiskOf(sqlite3_vfs* vfs) {
    return *static_cast<FaultyDisk*>(vfs->pAppData);
  }

  template <auto method, int failure, class... Arguments>
  static int CallSystem(sqlite3_vfs* vfs, Arguments... arguments) {
    FaultyDisk& disk = DiskOf(vfs);
    return disk.Fails(false) ? failure : (disk.real_->*method)(disk.real_, arguments...);
  }

  template <auto method, class... Arguments>
  static int Pass(sqlite3_file* file, Arguments... arguments) {
    sqlite3_file* real = static_cast<Handle*>(file)->Real();
    return (real->pMethods->*method)(real, arguments...);
  }

  template <auto method, int failure, class... Arguments>
  static int Call(sqlite3_file* file, Arguments... arguments) {
    return static_cast<Handle*>(file)->disk->Fails(false) ? failure
                                                          : Pass<method>(file, arguments...);
  }

  static int Write(sqlite3_file* file, const void* data, int size, sqlite3_int64 offset) {
    FaultyDisk& disk = *static_cast<Handle*>(file)->disk;
    sqlite3_int64 length = 0;
    Pass<&Methods::xFileSize>(file, &length);
    if (!disk.Fails(offset + size > length))
      return Pass<&Methods::xWrite>(file, data, size, offset);
    Pass<&Methods::xWrite>(file, data, size / 2, offset);
    return disk.fault_ == Fault::Full ? SQLITE_FULL : SQLITE_IOERR_WRITE;
  }

  /// Nothing here survives the machine: a test need not wait for the device.
  static int Sync(sqlite3_file* file, int) {
    return static_cast<Handle*>(file)->disk->Fails(false) ? SQLITE_IOERR_FSYNC : SQLITE_OK;
  }

  static int Close(sqlite3_file* file) {
    --static_cast<Handle*>(file)->disk->open_files_;
    return Pass<&Methods::xClose>(file);
  }

  static int OpenFile(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* out) {
    static const Methods methods = {
        .iVersion = 2,
        .xClose = Close,
        .xRead = Call<&Methods::xRead, SQLITE_IOERR_READ, void*, int, sqlite3_int64>,
        .xWrite = Write,
        .xTruncate = Call<&Methods::xTruncate, SQLITE_IOERR_TRUNCATE, sqlite3_int64>,
        .xSync = Sync,
        .xFileSize = Call<&Methods::xFileSize, SQLITE_IOERR_FSTAT, sqlite3_int64*>,
        .xLock = Call<&Methods::xLock, SQLITE_IOERR_LOCK, int>,
        .xUnlock = Pass<&Methods::xUnlock, int>,
        .xCheckReservedLock =
            Call<&Methods::xCheckReservedLock, SQLITE_IOERR_CHECKRESERVEDLOCK, int*>,
        .xFileControl = Pass<&Methods::xFileControl, int, void*>,
        .xSectorSize = Pass<&Methods::xSectorSize>,
        .xDeviceCharacteristics = Pass<&Methods::xDeviceCharacteristics>,
        .xShmMap = Call<&Methods::xShmMap, SQLITE_IOERR_SHMMAP, int, int, int, void volatile**>,
        .xShmLock = Pass<&Methods::xShmLock, int, int, int>,
        .xShmBarrier =
            [](sqlite3_file* f) {
              sqlite3_file* real = static_cast<Handle*>(f)->Real();
              real->pMethods->xShmBarrier(real);
            },
        .xShmUnmap = Pass<&Methods::xShmUnmap, int>,
        .xFetch = nullptr,
        .xUnfetch = nullptr};
    FaultyDisk& disk = DiskOf(vfs);
    auto* handle = static_cast<Handle*>(file);
    handle->pMethods = nullptr;
    handle->disk = &disk;
    if (disk.Fails((flags & SQLITE_OPEN_CREATE) != 0)) {
      disk.TellSystemError();
      return SQLITE_CANTOPEN;
    }
    const int code = disk.real_->xOpen(disk.real_, name, handle->Real(), flags, out);
    if (handle->Real()->pMethods == nullptr) return code;
    handle->pMethods = &methods;
    ++disk.open_files_;
    return code;
  }

  bool Fails(bool needs_space) {
    ++calls_;
    if (!HasFailed()) return false;
    return fault_ == Fault::Once ? calls_ == fail_at_ : fault_ == Fault::FromThenOn || needs_space;
  }
  std::error_code Error() const {
    return std::make_error_code(fault_ == Fault::Full ? std::errc::no_space_on_device
                                                      : std::errc::io_error);
  }

  sqlite3_vfs* real_ = nullptr;
  sqlite3_vfs vfs_{};
  int calls_ = 0;
  int fail_at_ = 0;
  int open_files_ = 0;
  Fault fault_ = Fault::Once;
};
