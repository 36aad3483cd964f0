#include "vdstomgr/platform/os/file.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "vdstomgr/platform/os/win32/system_call.h"

namespace vdstomgr::os {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

bool IsOffset(std::uint64_t offset, std::uint64_t size) {
  constexpr std::uint64_t kLargest = std::numeric_limits<std::int64_t>::max();
  return offset <= kLargest && size <= kLargest - offset;
}

OVERLAPPED PlaceOf(std::uint64_t offset) {
  OVERLAPPED place{};
  place.Offset = LowHalf(offset);
  place.OffsetHigh = HighHalf(offset);
  return place;
}

/// File systems behind a network refuse larger steps.
DWORD StepOf(std::size_t rest) {
  constexpr std::size_t kLargest = std::size_t{16} << 20;
  return static_cast<DWORD>(std::min(rest, kLargest));
}

/// The calls that both kinds of file have.
template <class Interface>
class WindowsFile : public Interface {
 public:
  explicit WindowsFile(Handle handle) : handle_(std::move(handle)) {}

  std::error_code ReadAt(std::uint64_t offset, void* buffer, std::size_t size,
                         std::size_t& count) override {
    count = 0;
    if (!IsOffset(offset, size)) return std::make_error_code(std::errc::invalid_argument);
    while (count < size) {
      OVERLAPPED place = PlaceOf(offset + count);
      DWORD step = 0;
      if (!ReadFile(Native(), static_cast<BYTE*>(buffer) + count, StepOf(size - count), &step,
                    &place)) {
        return GetLastError() == ERROR_HANDLE_EOF ? std::error_code() : LastError();
      }
      if (step == 0) break;
      count += step;
    }
    return {};
  }

  std::error_code WriteAt(std::uint64_t offset, const void* data, std::size_t size) override {
    if (!IsOffset(offset, size)) return std::make_error_code(std::errc::file_too_large);
    for (std::size_t done = 0; done < size;) {
      OVERLAPPED place = PlaceOf(offset + done);
      DWORD step = 0;
      if (!WriteFile(Native(), static_cast<const BYTE*>(data) + done, StepOf(size - done), &step,
                     &place)) {
        return LastError();
      }
      done += step;
    }
    return {};
  }

  std::error_code Size(std::uint64_t& size) override {
    LARGE_INTEGER number{};
    if (!GetFileSizeEx(Native(), &number)) return LastError();
    size = static_cast<std::uint64_t>(number.QuadPart);
    return {};
  }

  std::error_code Close() override { return ErrorUnless(CloseHandle(handle_.release())); }

 protected:
  HANDLE Native() const { return handle_.get(); }

 private:
  Handle handle_;
};

class WindowsExclusiveFile : public WindowsFile<ExclusiveFile> {
 public:
  using WindowsFile::WindowsFile;

  std::error_code Delete() override {
    FILE_DISPOSITION_INFO disposition{TRUE};
    return ErrorUnless(SetFileInformationByHandle(Native(), FileDispositionInfo, &disposition,
                                                  sizeof disposition));
  }

  /// The system reserves the space of what it does not keep sparse. Done without the file pointer,
  /// which an unbuffered file can only have at whole sectors.
  std::error_code SetSize(std::uint64_t size) override {
    if (!IsOffset(0, size)) return std::make_error_code(std::errc::file_too_large);
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
    return ErrorUnless(SetFileInformationByHandle(Native(), FileEndOfFileInfo, &end, sizeof end));
  }

  /// SetSize has done it.
  std::error_code Reserve(std::uint64_t, std::uint64_t) override { return {}; }

  std::error_code Map(std::uint64_t offset, std::uint64_t size, Paging paging,
                      std::unique_ptr<Mapping>& mapping) override {
    mapping.reset();
    std::uint64_t file_size = 0;
    if (const auto error = Size(file_size)) return error;
    if (size == 0 || offset > file_size || size > file_size - offset) {
      return std::make_error_code(std::errc::invalid_argument);
    }
    return MapWindowsFile(Native(), offset, size, paging, mapping);
  }

  std::error_code Sync() override { return ErrorUnless(FlushFileBuffers(Native())); }
};

/// Unbuffered calls take whole sectors only and do not see what mappings hold: reads and writes of
/// any bytes go through a mapping of their own.
class UnbufferedFile final : public WindowsExclusiveFile {
 public:
  using WindowsExclusiveFile::WindowsExclusiveFile;

  std::error_code ReadAt(std::uint64_t offset, void* buffer, std::size_t size,
                         std::size_t& count) override {
    count = 0;
    std::uint64_t file_size = 0;
    if (const auto error = Size(file_size)) return error;
    if (offset >= file_size) return {};
    const auto bytes = static_cast<std::size_t>(std::min<std::uint64_t>(size, file_size - offset));
    const auto error =
        Mapped(offset, bytes, [&](const BYTE* source) { std::memcpy(buffer, source, bytes); });
    if (!error) count = bytes;
    return error;
  }

  std::error_code WriteAt(std::uint64_t offset, const void* data, std::size_t size) override {
    if (!IsOffset(offset, size)) return std::make_error_code(std::errc::file_too_large);
    std::uint64_t file_size = 0;
    if (const auto error = Size(file_size)) return error;
    if (offset + size > file_size) {
      if (const auto error = SetSize(offset + size)) return error;
    }
    if (const auto error =
            Mapped(offset, size, [&](BYTE* target) { std::memcpy(target, data, size); })) {
      return error;
    }
    return Sync();
  }

 private:
  template <class Copy>
  std::error_code Mapped(std::uint64_t offset, std::size_t size, Copy copy) {
    if (size == 0) return {};
    const std::uint64_t before = offset % MapGranularity();
    std::unique_ptr<Mapping> mapping;
    if (const auto error = Map(offset - before, before + size, Paging::plain, mapping)) {
      return error;
    }
    copy(mapping->Data() + before);
    return mapping->Flush(static_cast<std::size_t>(before), size, FlushDepth::durable);
  }
};

DWORD AccessOf(OpenMode mode) {
  return mode == OpenMode::read ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
}

DWORD FlagsOf(Caching caching) {
  switch (caching) {
    case Caching::unbuffered:
      return FILE_FLAG_NO_BUFFERING | FILE_FLAG_RANDOM_ACCESS;
    case Caching::write_through:
      return FILE_FLAG_WRITE_THROUGH | FILE_FLAG_RANDOM_ACCESS;
    case Caching::normal:
      break;
  }
  return FILE_FLAG_RANDOM_ACCESS;
}

std::error_code OpenHandle(const std::string& path, DWORD access, DWORD share, DWORD disposition,
                           DWORD flags, Handle& handle) {
  const HANDLE opened =
      CreateFileW(WidePath(path).c_str(), access, share, nullptr, disposition, flags, nullptr);
  if (opened == INVALID_HANDLE_VALUE) return LastError();
  handle.reset(opened);
  return {};
}

/// Readers are let in, also those that let others write; a second writer is refused.
std::error_code OpenClaimed(const std::string& path, DWORD disposition, Caching caching,
                            std::unique_ptr<ExclusiveFile>& file) {
  file.reset();
  Handle handle;
  if (const auto error =
          OpenHandle(path, GENERIC_ALL, FILE_SHARE_READ, disposition, FlagsOf(caching), handle)) {
    return error;
  }
  if (GetFileType(handle.get()) != FILE_TYPE_DISK) {
    return std::make_error_code(std::errc::invalid_argument);
  }
  if (caching == Caching::unbuffered) {
    file = std::make_unique<UnbufferedFile>(std::move(handle));
  } else {
    file = std::make_unique<WindowsExclusiveFile>(std::move(handle));
  }
  return {};
}

/// The folder that a path names something in.
std::string FolderOf(const std::string& path) {
  return path.substr(0, path.find_last_of("/\\:") + 1) + ".";
}

NameKind KindOf(DWORD attributes) {
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return NameKind::folder;
  return (attributes & FILE_ATTRIBUTE_DEVICE) != 0 ? NameKind::other : NameKind::file;
}

class WindowsFileSystem final : public FileSystem {
 public:
  std::error_code Open(const std::string& path, OpenMode mode,
                       std::unique_ptr<File>& file) override {
    file.reset();
    const DWORD disposition = mode == OpenMode::create ? CREATE_ALWAYS : OPEN_EXISTING;
    Handle handle;
    const auto error =
        OpenHandle(path, AccessOf(mode), kShareAll, disposition, FILE_ATTRIBUTE_NORMAL, handle);
    if (!error) file = std::make_unique<WindowsFile<File>>(std::move(handle));
    return error;
  }

  std::error_code OpenExclusive(const std::string& path, Caching caching,
                                std::unique_ptr<ExclusiveFile>& file) override {
    return OpenClaimed(path, OPEN_EXISTING, caching, file);
  }

  std::error_code CreateNew(const std::string& path, Caching caching,
                            std::unique_ptr<ExclusiveFile>& file) override {
    return OpenClaimed(path, CREATE_NEW, caching, file);
  }

  std::error_code Rename(const std::string& from, const std::string& to) override {
    return ErrorUnless(
        MoveFileExW(WidePath(from).c_str(), WidePath(to).c_str(), MOVEFILE_WRITE_THROUGH));
  }

  std::error_code SyncNames(const std::string& path) override {
    Handle folder;
    if (const auto error = OpenHandle(FolderOf(path), FILE_ADD_FILE, kShareAll, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, folder)) {
      return error;
    }
    return ErrorUnless(FlushFileBuffers(folder.get()));
  }

  std::error_code Delete(const std::string& path) override {
    return ErrorUnless(DeleteFileW(WidePath(path).c_str()));
  }

  bool Exists(const std::string& path) override {
    return GetFileAttributesW(WidePath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
  }

  std::error_code Look(const std::string& path, NameKind& kind) override {
    const DWORD attributes = GetFileAttributesW(WidePath(path).c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES) {
      kind = KindOf(attributes);
      return {};
    }
    switch (GetLastError()) {
      case ERROR_FILE_NOT_FOUND:  // no file can be made under a name that ends as a folder's does
        kind = path.ends_with('/') || path.ends_with('\\') ? NameKind::nowhere : NameKind::missing;
        return {};
      case ERROR_PATH_NOT_FOUND:
      case ERROR_INVALID_NAME:
      case ERROR_BAD_PATHNAME:
      case ERROR_BAD_NETPATH:
        kind = NameKind::nowhere;
        return {};
      default:
        return LastError();
    }
  }
};

}  // namespace

FileSystem& SystemFiles() {
  static FileSystem& files = *new WindowsFileSystem;
  return files;
}

}  // namespace vdstomgr::os
