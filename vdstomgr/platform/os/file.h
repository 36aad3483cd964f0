#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <system_error>
#include <utility>

#include "vdstomgr/platform/os/mapping.h"

/// The library's only way to files, but for what the database engine reads and writes by itself: a
/// test disturbs both (the engine's own file layer by its VFS interface). Paths are UTF-8. Nothing
/// here throws; an error carries the system's own number (std::system_category).
namespace vdstomgr::os {

enum class OpenMode {
  read,       ///< an existing file; others may read, write and delete it meanwhile
  create,     ///< reading and writing; an existing file is emptied, unless somebody has claimed it
  read_write  ///< reading and writing an existing file that nobody has claimed
};

/// Can a file be deleted that somebody has open, other than by the calls below?
#if defined(_WIN32)
inline constexpr bool kDeletesOpenFiles = false;
#else
inline constexpr bool kDeletesOpenFiles = true;
#endif

/// What the system may hold back of what WriteAt writes. Mapped pages are not concerned.
enum class Caching {
  normal,         ///< as it likes
  write_through,  ///< nothing: it is on the device when WriteAt answers
  unbuffered      ///< as write_through asks of the device, without a copy in the system where that
                  ///< can be had
};

/// What a path leads to; links are followed.
enum class NameKind {
  nowhere,  ///< nothing, and no file can be made there: its folder is missing, a link leads nowhere
  missing,  ///< nothing, in a folder that is there
  file,
  folder,
  other  ///< a device, a pipe...
};

/// An open file. Not for use by two threads at once. The destructor closes and reports nothing.
class File {
 public:
  virtual ~File() = default;

  /// Reads up to `size` bytes from `offset` on. `count` is what was read: less than `size` only at
  /// the end of the file or with an error, never for another reason.
  virtual std::error_code ReadAt(std::uint64_t offset, void* buffer, std::size_t size,
                                 std::size_t& count) = 0;

  /// Writes all `size` bytes at `offset`, growing the file; or fails, and then any number of them
  /// may have been written. What was written may be lost in a power cut.
  virtual std::error_code WriteAt(std::uint64_t offset, const void* data, std::size_t size) = 0;

  virtual std::error_code Size(std::uint64_t& size) = 0;

  /// Closes, reporting what the system held back until now. Later calls fail.
  virtual std::error_code Close() = 0;
};

/// A file that this object alone may write, in any process: a second one is refused while it is
/// open, readers are let in. The claim ends with Close, with the object or with the process.
class ExclusiveFile : public File {
 public:
  /// Deletes the file, which nobody else can have opened for writing: its name is free once this
  /// object is gone too. Who reads it keeps what is open. A symbolic link that led here is deleted
  /// in its place.
  virtual std::error_code Delete() = 0;

  /// Makes the file `size` bytes long. What is gained reads as zeros and, where the system allows
  /// it, takes no space yet. On failure the length stays. Not while a mapping of the file exists.
  virtual std::error_code SetSize(std::uint64_t size) = 0;

  /// Sees to it that the file has the space for `size` bytes from `offset` on, so that writing
  /// there, also through a mapping, cannot meet a full disk. The system may take kSpaceUnit bytes
  /// into memory as one piece, and the first write to a mapped piece needs the space of all of it:
  /// reserve whole units, or up to the end of the file, beyond which the bytes must not reach. On
  /// failure some of the space may have been taken.
  virtual std::error_code Reserve(std::uint64_t offset, std::uint64_t size) = 0;
  static constexpr std::uint64_t kSpaceUnit = std::uint64_t{2} << 20;

  /// SetSize for a longer file of which there may be a mapping, from its beginning on: it then
  /// reaches to the new end too, or is null where that cannot be had. On failure the length stays,
  /// and the mapping where it can.
  virtual std::error_code Grow(std::uint64_t size, std::unique_ptr<Mapping>& mapping) {
    mapping.reset();
    return SetSize(size);
  }

  /// Maps `size` bytes (at least one, none beyond the end of the file) from `offset` (a multiple of
  /// MapGranularity) on, for reading, and for writing where the space is reserved. `mapping` is set
  /// exactly when there is no error; it may outlive the file.
  virtual std::error_code Map(std::uint64_t offset, std::uint64_t size, Paging paging,
                              std::unique_ptr<Mapping>& mapping) = 0;

  /// Returns when the device holds the length and all that WriteAt wrote; what was written through
  /// a mapping is made ready for this by its durable Flush.
  virtual std::error_code Sync() = 0;
};

/// The file system. A test puts a ForwardingFileSystem in its place to make calls fail.
class FileSystem {
 public:
  virtual ~FileSystem() = default;

  /// `file` is set exactly when there is no error. A directory is no file.
  virtual std::error_code Open(const std::string& path, OpenMode mode,
                               std::unique_ptr<File>& file) = 0;
  /// Opens an existing file as its only writer, for access here and there. Fails at once when
  /// somebody else may write it, or has just deleted or renamed it, or when it is no ordinary file.
  /// `file` as in Open.
  virtual std::error_code OpenExclusive(const std::string& path, Caching caching,
                                        std::unique_ptr<ExclusiveFile>& file) = 0;
  /// As OpenExclusive, for a file that must not exist yet. A crash may leave it empty.
  virtual std::error_code CreateNew(const std::string& path, Caching caching,
                                    std::unique_ptr<ExclusiveFile>& file) = 0;
  /// Deletes a file whoever uses it; see ExclusiveFile::Delete.
  virtual std::error_code Delete(const std::string& path) = 0;
  /// Gives a file that nobody has claimed another name in the same file system, all at once: a
  /// crash leaves the old name or the new one. Fails with file_exists when the new name is taken.
  virtual std::error_code Rename(const std::string& from, const std::string& to) = 0;
  /// Returns when the device holds the names that were made, changed or deleted beside `path`.
  virtual std::error_code SyncNames(const std::string& path) = 0;
  /// Whether there is a file or anything else of that name; false when that cannot be told.
  virtual bool Exists(const std::string& path) = 0;
  /// Fails when it cannot be told, as where the folder may not be searched. Without an error `kind`
  /// is set.
  virtual std::error_code Look(const std::string& path, NameKind& kind) = 0;
};

/// Pass every call on but Grow, which takes the mapping that the same file has made and does not
/// know one that a derived class has put around it. A derived class overrides what it wants to
/// disturb.
class ForwardingExclusiveFile : public ExclusiveFile {
 public:
  explicit ForwardingExclusiveFile(std::unique_ptr<ExclusiveFile> target)
      : target_(std::move(target)) {}

  std::error_code ReadAt(std::uint64_t offset, void* buffer, std::size_t size,
                         std::size_t& count) override {
    return target_->ReadAt(offset, buffer, size, count);
  }
  std::error_code WriteAt(std::uint64_t offset, const void* data, std::size_t size) override {
    return target_->WriteAt(offset, data, size);
  }
  std::error_code Size(std::uint64_t& size) override { return target_->Size(size); }
  std::error_code Delete() override { return target_->Delete(); }
  std::error_code SetSize(std::uint64_t size) override { return target_->SetSize(size); }
  std::error_code Reserve(std::uint64_t offset, std::uint64_t size) override {
    return target_->Reserve(offset, size);
  }
  std::error_code Map(std::uint64_t offset, std::uint64_t size, Paging paging,
                      std::unique_ptr<Mapping>& mapping) override {
    return target_->Map(offset, size, paging, mapping);
  }
  std::error_code Sync() override { return target_->Sync(); }
  std::error_code Close() override { return target_->Close(); }

 private:
  std::unique_ptr<ExclusiveFile> target_;
};

class ForwardingFileSystem : public FileSystem {
 public:
  explicit ForwardingFileSystem(FileSystem& target) : target_(target) {}

  std::error_code Open(const std::string& path, OpenMode mode,
                       std::unique_ptr<File>& file) override {
    return target_.Open(path, mode, file);
  }
  std::error_code OpenExclusive(const std::string& path, Caching caching,
                                std::unique_ptr<ExclusiveFile>& file) override {
    return target_.OpenExclusive(path, caching, file);
  }
  std::error_code CreateNew(const std::string& path, Caching caching,
                            std::unique_ptr<ExclusiveFile>& file) override {
    return target_.CreateNew(path, caching, file);
  }
  std::error_code Delete(const std::string& path) override { return target_.Delete(path); }
  std::error_code Rename(const std::string& from, const std::string& to) override {
    return target_.Rename(from, to);
  }
  std::error_code SyncNames(const std::string& path) override { return target_.SyncNames(path); }
  bool Exists(const std::string& path) override { return target_.Exists(path); }
  std::error_code Look(const std::string& path, NameKind& kind) override {
    return target_.Look(path, kind);
  }

 private:
  FileSystem& target_;
};

/// The operating system's file system.
FileSystem& SystemFiles();

/// The file system in force: the operating system's, or what was put in its place.
FileSystem& Files();

/// Puts `files`, which stays the caller's, in force from the next call of Files on; null restores
/// the operating system's.
void SetFiles(FileSystem* files);

}  // namespace vdstomgr::os
