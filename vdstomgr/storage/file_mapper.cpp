#include "vdstomgr/storage/file_mapper.h"

#include <atomic>
#include <cstring>
#include <limits>
#include <utility>

#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/os/file.h"
#include "vdstomgr/platform/os/lock.h"
#include "vdstomgr/platform/report/report.h"
#include "vdstomgr/platform/text/code_page.h"

namespace os = vdstomgr::os;
using vdstomgr::ScopedLock;
using vdstomgr::Trace;

namespace {

constexpr int kDefaultStep = 0x6400000;

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

bool IsSum(std::uint64_t left, std::uint64_t right) {
  return right <= std::numeric_limits<std::uint64_t>::max() - left;
}

}  // namespace

struct CRkFileMapper::State {
  vdstomgr::RecursiveLock lock;
  std::atomic<int> step = kDefaultStep;
  std::atomic<bool> is_open = false;

  std::unique_ptr<os::ExclusiveFile> file;  ///< null when closed
  CString path;
  int mapping_mode = 2;
  std::uint64_t known_size = 0;

  bool has_map = false;
  DWORD requested_size = 0;    ///< of the map; 0: the whole file
  std::uint64_t map_size = 0;  ///< never more than the file's
  /// The part of the map that is in memory: all of it where the address space has room. Kept from
  /// view to view.
  std::unique_ptr<os::Mapping> window;
  std::uint64_t window_offset = 0;

  bool has_view = false;
  std::uint64_t view_offset = 0;
  DWORD view_length = 0;

  std::error_code Open(const char* name, int new_mapping_mode, int open_mode);
  bool Close();
  std::error_code CreateMap(DWORD size);
  void CloseMap();
  BYTE* View(std::uint64_t offset, DWORD length);
  bool EndView() { return std::exchange(has_view, false); }
  bool Grow(std::uint64_t size);
  bool Sync();

 private:
  std::error_code MapWindow(std::uint64_t offset, std::uint64_t size);
  std::error_code ShowWindow(std::uint64_t offset, std::uint64_t size);
  bool IsInWindow(std::uint64_t offset, std::uint64_t size) const;
  std::uint64_t GrownSize(std::uint64_t size) const;
};

std::error_code CRkFileMapper::State::Open(const char* name, int new_mapping_mode, int open_mode) {
  const std::string native = vdstomgr::ToUtf8(vdstomgr::ViewOf(name));
  std::unique_ptr<os::ExclusiveFile> opened;
  if (const auto error = os::Files().OpenExclusive(native, CachingOf(open_mode), opened)) {
    return error;
  }
  if (const auto error = opened->Size(known_size)) return error;
  file = std::move(opened);
  path = name;
  mapping_mode = new_mapping_mode;
  is_open = true;
  return {};
}

bool CRkFileMapper::State::Close() {
  if (file == nullptr) return false;
  CloseMap();
  file.reset();
  path.Empty();
  is_open = false;
  return true;
}

std::error_code CRkFileMapper::State::CreateMap(DWORD size) {
  std::uint64_t file_size = 0;
  if (const auto error = file->Size(file_size)) return error;
  if (size > file_size) {
    if (const auto error = file->SetSize(size)) return error;
  }
  map_size = size != 0 ? size : file_size;
  if (map_size == 0) return std::make_error_code(std::errc::invalid_argument);
  const auto error = ShowWindow(0, map_size);
  has_map = !error || error == std::errc::not_enough_memory;
  return has_map ? std::error_code() : error;
}

void CRkFileMapper::State::CloseMap() {
  EndView();
  window.reset();
  has_map = false;
}

bool CRkFileMapper::State::IsInWindow(std::uint64_t offset, std::uint64_t size) const {
  return window != nullptr && offset >= window_offset && offset - window_offset <= window->Size() &&
         size <= window->Size() - (offset - window_offset);
}

std::error_code CRkFileMapper::State::MapWindow(std::uint64_t offset, std::uint64_t size) {
  window.reset();
  window_offset = offset;
  return file->Map(offset, size, PagingOf(mapping_mode), window);
}

/// Where there is no room for the whole map, what is asked for must do.
std::error_code CRkFileMapper::State::ShowWindow(std::uint64_t offset, std::uint64_t size) {
  if (IsInWindow(offset, size)) return {};
  const auto error = MapWindow(0, map_size);
  return error == std::errc::not_enough_memory ? MapWindow(offset, size) : error;
}

BYTE* CRkFileMapper::State::View(std::uint64_t offset, DWORD length) {
  if (!has_map || has_view) return nullptr;
  if (!IsSum(offset, length) || offset + length > known_size) return nullptr;
  const std::uint64_t aligned = offset / os::MapGranularity() * os::MapGranularity();
  std::uint64_t size = offset - aligned + length;
  std::error_code error = std::make_error_code(std::errc::invalid_argument);
  if (aligned < map_size && size <= map_size - aligned) {
    if (size == 0) size = map_size - aligned;
    error = ShowWindow(aligned, size);
  }
  if (error) {
    Trace("CRkFileMapper::LockFile >> Error : %d [%s]\n", error.value(), path.GetString());
    return nullptr;
  }
  has_view = true;
  view_offset = offset;
  view_length = length;
  return window->Data() + (offset - window_offset);
}

/// One step more than needed when the size is an exact multiple, on purpose: the length of files
/// follows from it. 0 when there is no such size.
std::uint64_t CRkFileMapper::State::GrownSize(std::uint64_t size) const {
  const int bytes = step;
  if (bytes < 1) return 0;
  const auto unit = static_cast<std::uint64_t>(bytes);
  const std::uint64_t steps = size / unit + 1;
  return steps <= std::numeric_limits<std::uint64_t>::max() / unit ? steps * unit : 0;
}

bool CRkFileMapper::State::Grow(std::uint64_t size) {
  if (file == nullptr) return false;
  if (has_map && size <= map_size) return true;
  std::uint64_t old_size = 0;
  if (file->Size(old_size)) return false;
  if (old_size >= size) return true;
  const std::uint64_t new_size = GrownSize(size);
  if (has_view || new_size == 0) return false;
  const bool had_map = std::exchange(has_map, false);
  if (window_offset != 0) window.reset();
  const bool grown = !file->Grow(new_size, window);
  if (grown) known_size = new_size;
  if (!had_map) return grown;
  if (const auto error = CreateMap(requested_size)) {
    Trace("CRkFileMapper::SetFileSize >> Error : %d [%s]\n", error.value(), path.GetString());
  }
  return grown;
}

bool CRkFileMapper::State::Sync() {
  if (file == nullptr) return false;
  if (window != nullptr && window->Flush(0, window->Size(), os::FlushDepth::durable)) return false;
  if (file->Sync()) return false;
  return !os::Files().SyncNames(vdstomgr::ToUtf8(path));
}

CRkFileMapper::CRkFileMapper() : m_state(std::make_shared<State>()) {}

CRkFileMapper::~CRkFileMapper() = default;

CRkFileMapper::CRkFileMapper(const CRkFileMapper& other) : m_state(other.m_state) {
  const ScopedLock lock(other.m_state->lock);
  if (m_state->is_open) return;
  m_state = std::make_shared<State>();
  m_state->step = other.m_state->step.load();
}

CRkFileMapper& CRkFileMapper::operator=(const CRkFileMapper& other) {
  if (this != &other) m_state = CRkFileMapper(other).m_state;
  return *this;
}

void CRkFileMapper::SetUnitExtensionSize(int bytes) {
  m_state->step = bytes;
}

bool CRkFileMapper::OpenFile(const char* path, int mapping_mode, int open_mode) {
  const ScopedLock lock(m_state->lock);
  if (m_state->is_open) return false;
  const auto error = m_state->Open(path, mapping_mode, open_mode);
  if (!error) return true;
  CString text;
  text.Format("CRkM OpenFile >> Error with %d", error.value());
  vdstomgr::ShowMessageBox(text);
  Trace("CRkFileMapper::OpenFile(%s) >> File Open Error %X", CString(path).GetString(),
        static_cast<unsigned>(error.value()));
  return false;
}

bool CRkFileMapper::CreateMap(DWORD maximum_size, const char*) {
  State& state = *m_state;
  const ScopedLock lock(state.lock);
  if (!state.is_open || state.has_map) return false;
  state.requested_size = maximum_size;
  const auto error = state.CreateMap(maximum_size);
  if (error) {
    Trace("CRkFileMapper::CreateMap >> Error : %d [%s]\n", error.value(), state.path.GetString());
  }
  return !error;
}

BYTE* CRkFileMapper::LockFile(std::uint64_t offset, DWORD length) {
  const ScopedLock lock(m_state->lock);
  return m_state->View(offset, length);
}

bool CRkFileMapper::UnlockFile() {
  const ScopedLock lock(m_state->lock);
  return m_state->EndView();
}

bool CRkFileMapper::FlushFile() {
  State& state = *m_state;
  const ScopedLock lock(state.lock);
  if (!state.has_map) return false;
  if (!state.has_view) return true;
  const auto offset = static_cast<std::size_t>(state.view_offset - state.window_offset);
  const std::size_t size =
      state.view_length != 0 ? state.view_length : state.window->Size() - offset;
  (void)state.window->Flush(offset, size, os::FlushDepth::light);
  return true;
}

void CRkFileMapper::CloseMap() {
  const ScopedLock lock(m_state->lock);
  m_state->CloseMap();
}

bool CRkFileMapper::CloseFile() {
  const ScopedLock lock(m_state->lock);
  return m_state->Close();
}

bool CRkFileMapper::WriteFileData(std::uint64_t offset, const BYTE* data, int length) {
  State& state = *m_state;
  const ScopedLock lock(state.lock);
  const auto size = static_cast<DWORD>(length);
  if (length < 0 || !IsSum(offset, size) || !state.Grow(offset + size)) return false;
  BYTE* const target = state.View(offset, size);
  if (target == nullptr) {
    state.CloseMap();
    return false;
  }
  if (size != 0) std::memcpy(target, data, size);
  return state.EndView();
}

bool CRkFileMapper::SetFileSize(std::uint64_t size) {
  const ScopedLock lock(m_state->lock);
  return m_state->Grow(size);
}

bool CRkFileMapper::IsFileOpened() const {
  return m_state->is_open;
}

std::uint64_t CRkFileMapper::GetFileSize() const {
  const ScopedLock lock(m_state->lock);
  std::uint64_t size = 0;
  return m_state->is_open && !m_state->file->Size(size) ? size : 0;
}

bool CRkFileMapper::IsLocked() const {
  const ScopedLock lock(m_state->lock);
  return m_state->has_view;
}

bool vdstomgr::SyncFile(CRkFileMapper& mapper) {
  const ScopedLock lock(mapper.m_state->lock);
  return mapper.m_state->Sync();
}
