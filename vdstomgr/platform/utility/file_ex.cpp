#include "vdstomgr/platform/utility/file_ex.h"

#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/os/file.h"
#include "vdstomgr/platform/text/code_page.h"

namespace os = vdstomgr::os;

namespace {

os::OpenMode ModeOf(UINT flags, bool exists) {
  const bool keeps = (flags & CFileEx::modeNoTruncate) != 0 && exists;
  if ((flags & CFileEx::modeCreate) != 0 && !keeps) return os::OpenMode::create;
  const bool writes = (flags & (CFileEx::modeWrite | CFileEx::modeReadWrite)) != 0;
  return writes ? os::OpenMode::read_write : os::OpenMode::read;
}

}  // namespace

CFileEx::CFileEx() = default;
CFileEx::~CFileEx() = default;
CFileEx::CFileEx(CFileEx&&) noexcept = default;
CFileEx& CFileEx::operator=(CFileEx&&) noexcept = default;

bool CFileEx::Open(const char* path, UINT flags) {
  Close();
  const std::string native = vdstomgr::ToUtf8(vdstomgr::ViewOf(path));
  position_ = 0;
  failed_ = false;
  return !os::Files().Open(native, ModeOf(flags, os::Files().Exists(native)), file_);
}

bool CFileEx::Close() {
  if (file_ == nullptr) return true;
  const bool closed = !file_->Close();
  file_.reset();
  return closed && !failed_;
}

std::uint64_t CFileEx::GetLength() const {
  std::uint64_t length = 0;
  return file_ != nullptr && !file_->Size(length) ? length : 0;
}

UINT CFileEx::Read(void* buffer, UINT length) {
  std::size_t count = 0;
  if (file_ == nullptr) return 0;
  (void)file_->ReadAt(position_, buffer, length, count);
  position_ += count;
  return static_cast<UINT>(count);
}

bool CFileEx::Write(const void* data, UINT length) {
  if (file_ == nullptr) return false;
  if (file_->WriteAt(position_, data, length)) {
    failed_ = true;
    return false;
  }
  position_ += length;
  return true;
}
