#include "vdstomgr/storage/file_mapper.h"

#include "vdstomgr/platform/os/lock.h"
#include "vdstomgr/storage/mapped_file.h"
#include "vdstomgr/storage/sync_access.h"

using vdstomgr::ScopedLock;

struct CRkFileMapper::State {
  vdstomgr::RecursiveLock lock;
  vdstomgr::MappedFile file;
};

CRkFileMapper::CRkFileMapper() : m_state(std::make_shared<State>()) {}

CRkFileMapper::~CRkFileMapper() = default;

CRkFileMapper::CRkFileMapper(const CRkFileMapper& other) : m_state(other.m_state) {
  const ScopedLock lock(other.m_state->lock);
  if (m_state->file.IsOpen()) return;
  m_state = std::make_shared<State>();
  m_state->file.SetStep(other.m_state->file.Step());
}

CRkFileMapper& CRkFileMapper::operator=(const CRkFileMapper& other) {
  if (this != &other) m_state = CRkFileMapper(other).m_state;
  return *this;
}

void CRkFileMapper::SetUnitExtensionSize(int bytes) {
  m_state->file.SetStep(bytes);
}

bool CRkFileMapper::OpenFile(const char* path, int mapping_mode, int open_mode) {
  const ScopedLock lock(m_state->lock);
  return m_state->file.Open(path, mapping_mode, open_mode);
}

bool CRkFileMapper::CreateMap(DWORD maximum_size, const char*) {
  const ScopedLock lock(m_state->lock);
  return m_state->file.CreateMap(maximum_size);
}

BYTE* CRkFileMapper::LockFile(std::uint64_t offset, DWORD length) {
  const ScopedLock lock(m_state->lock);
  return m_state->file.ViewToWrite(offset, length);
}

bool CRkFileMapper::UnlockFile() {
  const ScopedLock lock(m_state->lock);
  return m_state->file.EndView();
}

bool CRkFileMapper::FlushFile() {
  const ScopedLock lock(m_state->lock);
  return m_state->file.FlushView();
}

void CRkFileMapper::CloseMap() {
  const ScopedLock lock(m_state->lock);
  m_state->file.CloseMap();
}

bool CRkFileMapper::CloseFile() {
  const ScopedLock lock(m_state->lock);
  return m_state->file.Close();
}

bool CRkFileMapper::WriteFileData(std::uint64_t offset, const BYTE* data, int length) {
  const ScopedLock lock(m_state->lock);
  return m_state->file.Write(offset, data, length);
}

bool CRkFileMapper::SetFileSize(std::uint64_t size) {
  const ScopedLock lock(m_state->lock);
  return m_state->file.Grow(size);
}

bool CRkFileMapper::IsFileOpened() const {
  return m_state->file.IsOpen();
}

std::uint64_t CRkFileMapper::GetFileSize() const {
  const ScopedLock lock(m_state->lock);
  return m_state->file.Size();
}

bool CRkFileMapper::IsLocked() const {
  return m_state->file.HasView();
}

bool vdstomgr::SyncFile(CRkFileMapper& mapper) {
  auto& state = SyncAccess::StateOf(mapper);
  const ScopedLock lock(state.lock);
  return state.file.Sync();
}
