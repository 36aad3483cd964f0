#include "vdstomgr/storage/mapped_file.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <limits>
#include <utility>

#include "vdstomgr/platform/report/report.h"
#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/storage/note_storage_error.h"

namespace vdstomgr {
namespace {

os::Paging PagingOf(int mapping_mode) {
  switch (mapping_mode) {
    case 1:
      return os::Paging::reserve_uncached;
    case 2:
      return os::Paging::commit;
    default:
      return os::Paging::plain;
  }
}

os::Caching CachingOf(int open_mode) {
  switch (open_mode) {
    case 1:
      return os::Caching::unbuffered;
    case 2:
      return os::Caching::write_through;
    default:
      return os::Caching::normal;
  }
}

std::uint64_t UnitStart(std::uint64_t offset) {
  return offset - offset % os::ExclusiveFile::kSpaceUnit;
}

bool IsSum(std::uint64_t left, std::uint64_t right) {
  return right <= std::numeric_limits<std::uint64_t>::max() - left;
}

}  // namespace

bool MappedFile::Open(const char* path, int mapping_mode, int open_mode) {
  if (is_open_) return false;
  const auto error =
      NoteStorageError(CString(path).Str(), OpenNative(path, mapping_mode, open_mode));
  if (!error) return true;
  CString text;
  text.Format("CRkM OpenFile >> Error with %d", error.value());
  ShowMessageBox(text);
  Trace("CRkFileMapper::OpenFile(%s) >> File Open Error %X", CString(path).GetString(),
        static_cast<unsigned>(error.value()));
  return false;
}

std::error_code MappedFile::OpenNative(const char* name, int mapping_mode, int open_mode) {
  std::unique_ptr<os::ExclusiveFile> opened;
  const std::string native = ToUtf8(ViewOf(name));
  if (const auto error = os::Files().OpenExclusive(native, CachingOf(open_mode), opened)) {
    return error;
  }
  if (const auto error = opened->Size(known_size_)) return error;
  reserved_ = 0;
  file_ = std::move(opened);
  path_ = name;
  mapping_mode_ = mapping_mode;
  is_open_ = true;
  return {};
}

std::error_code MappedFile::Note(std::error_code error) const {
  return NoteStorageError(path_.Str(), error);
}

bool MappedFile::Close() {
  if (file_ == nullptr) return false;
  CloseMap();
  file_.reset();
  path_.Empty();
  is_open_ = false;
  return true;
}

std::uint64_t MappedFile::Size() const {
  std::uint64_t size = 0;
  return file_ != nullptr && !file_->Size(size) ? size : 0;
}

bool MappedFile::CreateMap(DWORD maximum_size) {
  if (file_ == nullptr || has_map_) return false;
  requested_size_ = maximum_size;
  const auto error = MapFile();
  if (error)
    Trace("CRkFileMapper::CreateMap >> Error : %d [%s]\n", error.value(), path_.GetString());
  return !error;
}

std::error_code MappedFile::MapFile() {
  std::uint64_t file_size = 0;
  if (const auto error = file_->Size(file_size)) return error;
  if (requested_size_ > file_size) {
    if (const auto error = file_->SetSize(requested_size_)) return error;
  }
  map_size_ = requested_size_ != 0 ? requested_size_ : file_size;
  if (map_size_ == 0) return std::make_error_code(std::errc::invalid_argument);
  const auto error = ShowWindow(0, map_size_);
  has_map_ = !error || error == std::errc::not_enough_memory;
  return has_map_ ? std::error_code() : error;
}

void MappedFile::CloseMap() {
  EndView();
  window_.reset();
  has_map_ = false;
}

bool MappedFile::IsInWindow(std::uint64_t offset, std::uint64_t size) const {
  return window_ != nullptr && offset >= window_offset_ &&
         offset - window_offset_ <= window_->Size() &&
         size <= window_->Size() - (offset - window_offset_);
}

std::error_code MappedFile::MapWindow(std::uint64_t offset, std::uint64_t size) {
  window_.reset();
  window_offset_ = offset;
  return file_->Map(offset, size, PagingOf(mapping_mode_), window_);
}

/// Where there is no room for the whole map, what is asked for must do.
std::error_code MappedFile::ShowWindow(std::uint64_t offset, std::uint64_t size) {
  if (IsInWindow(offset, size)) return {};
  const auto error = MapWindow(0, map_size_);
  return error == std::errc::not_enough_memory ? MapWindow(offset, size) : error;
}

BYTE* MappedFile::View(std::uint64_t offset, DWORD length) {
  if (!has_map_ || HasView()) return nullptr;
  if (!IsSum(offset, length) || offset + length > known_size_) return nullptr;
  const std::uint64_t aligned = offset / os::MapGranularity() * os::MapGranularity();
  std::uint64_t size = offset - aligned + length;
  std::error_code error = std::make_error_code(std::errc::invalid_argument);
  if (aligned < map_size_ && size <= map_size_ - aligned) {
    if (size == 0) size = map_size_ - aligned;
    error = ShowWindow(aligned, size);
  }
  if (error) {
    Trace("CRkFileMapper::LockFile >> Error : %d [%s]\n", error.value(), path_.GetString());
    return nullptr;
  }
  assert(IsInWindow(offset, length));
  has_view_.store(true, std::memory_order_relaxed);
  view_offset_ = offset;
  view_length_ = length;
  return window_->Data() + (offset - window_offset_);
}

BYTE* MappedFile::ViewToWrite(std::uint64_t offset, DWORD length) {
  BYTE* const view = View(offset, length);
  if (view == nullptr || Reserve(offset, length != 0 ? length : map_size_ - offset)) return view;
  EndView();
  return nullptr;
}

bool MappedFile::FlushView() {
  if (!has_map_) return false;
  if (!HasView()) return true;
  const auto offset = static_cast<std::size_t>(view_offset_ - window_offset_);
  const std::size_t size = view_length_ != 0 ? view_length_ : window_->Size() - offset;
  (void)window_->Flush(offset, size, os::FlushDepth::light);
  return true;
}

bool MappedFile::Write(std::uint64_t offset, const BYTE* data, int length) {
  const auto size = static_cast<DWORD>(length);
  if (length < 0 || !IsSum(offset, size) || !Grow(offset + size)) return false;
  if (!Reserve(offset, size)) return false;
  BYTE* const target = View(offset, size);
  if (target == nullptr) {
    CloseMap();
    return false;
  }
  if (size != 0) std::memcpy(target, data, size);
  return EndView();
}

/// One step more than needed when the size is an exact multiple, on purpose: the length of files
/// follows from it. 0 when there is no such size.
std::uint64_t MappedFile::GrownSize(std::uint64_t size) const {
  const int bytes = step_;
  if (bytes < 1) return 0;
  const auto unit = static_cast<std::uint64_t>(bytes);
  const std::uint64_t steps = size / unit + 1;
  return steps <= std::numeric_limits<std::uint64_t>::max() / unit ? steps * unit : 0;
}

bool MappedFile::Grow(std::uint64_t size) {
  if (file_ == nullptr) return false;
  if (has_map_ && size <= map_size_) return true;
  std::uint64_t old_size = 0;
  if (file_->Size(old_size)) return false;
  if (old_size >= size) return true;
  const std::uint64_t new_size = GrownSize(size);
  if (HasView() || new_size == 0) return false;
  const bool had_map = std::exchange(has_map_, false);
  if (window_offset_ != 0) window_.reset();
  const bool grown = !Note(file_->Grow(new_size, window_));
  if (grown) known_size_ = new_size;
  reserved_ = UnitStart(reserved_);  // what ended with the file may now be a part of a larger piece
  if (!had_map) return grown;
  if (const auto error = MapFile()) {
    Trace("CRkFileMapper::SetFileSize >> Error : %d [%s]\n", error.value(), path_.GetString());
  }
  return grown;
}

/// Takes whole units, but leaves a gap between what is reserved and what is asked for.
bool MappedFile::ReserveMore(std::uint64_t offset, std::uint64_t size) {
  if (file_ == nullptr || !IsSum(offset, size) || offset + size > known_size_) return false;
  if (size == 0) return true;
  const std::uint64_t begin = UnitStart(offset > reserved_ ? offset : reserved_);
  const std::uint64_t last_unit = UnitStart(offset + size - 1);
  const std::uint64_t end =
      last_unit + std::min(os::ExclusiveFile::kSpaceUnit, known_size_ - last_unit);
  if (const auto error = Note(file_->Reserve(begin, end - begin))) {
    Trace("CRkFileMapper::Reserve >> Error : %d [%s]\n", error.value(), path_.GetString());
    return false;
  }
  assert(begin < end && offset + size <= end);
  if (begin <= reserved_) reserved_ = end;
  return true;
}

bool MappedFile::Sync() {
  if (file_ == nullptr) return false;
  if (window_ != nullptr && Note(window_->Flush(0, window_->Size(), os::FlushDepth::durable))) {
    return false;
  }
  if (Note(file_->Sync())) return false;
  return !Note(os::Files().SyncNames(ToUtf8(path_)));
}

}  // namespace vdstomgr
