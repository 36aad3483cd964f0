#pragma once

#include <cstdint>
#include <memory>

#include "vdstomgr/platform/export.h"
#include "vdstomgr/platform/framework/types.h"

namespace vdstomgr::os {
class File;
}

/// A file that is read or written from its start to its end. The path is in the process's code
/// page.
class VDSTO_API CFileEx {
 public:
  enum OpenFlags : UINT {
    modeRead = 0x0000,
    modeWrite = 0x0001,
    modeReadWrite = 0x0002,
    shareDenyNone = 0x0040,
    modeCreate = 0x1000,      ///< makes a new file or empties an old one
    modeNoTruncate = 0x2000,  ///< with modeCreate: keeps an old file's content
    typeBinary = 0x8000,
  };

  CFileEx();
  ~CFileEx();
  CFileEx(CFileEx&&) noexcept;
  CFileEx& operator=(CFileEx&&) noexcept;

  /// Closes what is open first. False when the file cannot be opened; nothing is open then.
  bool Open(const char* path, UINT flags = modeRead | shareDenyNone | typeBinary);
  bool IsOpen() const { return file_ != nullptr; }
  /// False when something written did not reach the file, at any time since Open.
  bool Close();

  /// In bytes; 0 when nothing is open.
  std::uint64_t GetLength() const;
  /// Reads on from where the last Read or Write ended. Answers the bytes read: fewer than `length`
  /// at the end of the file or after an error.
  UINT Read(void* buffer, UINT length);
  /// Writes on from where the last Read or Write ended; false unless all was written.
  bool Write(const void* data, UINT length);

 private:
  std::unique_ptr<vdstomgr::os::File> file_;
  std::uint64_t position_ = 0;
  bool failed_ = false;
};
