#include "vdstomgr/storage/array_file.h"

#include <cstdint>

#include "vdstomgr/platform/os/lock.h"
#include "vdstomgr/platform/report/report.h"
#include "vdstomgr/storage/sync_access.h"
#include "vdstomgr/storage/unit_file.h"

using vdstomgr::ScopedLock;
using vdstomgr::Trace;
using vdstomgr::UnitFile;

namespace {

unsigned Address(const void* unit) {
  return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(unit));
}

}  // namespace

struct CRkFileArrayManager::State {
  vdstomgr::RecursiveLock lock;
  UnitFile units;
};

bool CRkFileArrayManager::CreateFileArray(const char* path, DWORD array_id, int unit_size) {
  return UnitFile::Create(path, array_id, unit_size);
}

CRkFileArrayManager::CRkFileArrayManager() : m_state(std::make_shared<State>()) {}

CRkFileArrayManager::~CRkFileArrayManager() = default;

CRkFileArrayManager::CRkFileArrayManager(const CRkFileArrayManager& other)
    : m_state(other.m_state) {
  const ScopedLock lock(other.m_state->lock);
  if (!m_state->units.IsClaimed()) m_state = std::make_shared<State>();
}

CRkFileArrayManager& CRkFileArrayManager::operator=(const CRkFileArrayManager& other) {
  if (this != &other) m_state = CRkFileArrayManager(other).m_state;
  return *this;
}

bool CRkFileArrayManager::OpenFile(const char* path, int unit_size, int mapping_mode,
                                   int open_mode) {
  const ScopedLock lock(m_state->lock);
  return m_state->units.Open(path, unit_size, mapping_mode, open_mode);
}

void CRkFileArrayManager::CloseFile() {
  const ScopedLock lock(m_state->lock);
  m_state->units.Close();
}

int CRkFileArrayManager::GetSize() const {
  const ScopedLock lock(m_state->lock);
  return m_state->units.Count();
}

DWORD CRkFileArrayManager::GetArrayID() const {
  const ScopedLock lock(m_state->lock);
  return m_state->units.ArrayId();
}

bool CRkFileArrayManager::SetSize(int count) {
  const ScopedLock lock(m_state->lock);
  return m_state->units.SetCount(count);
}

void CRkFileArrayManager::RemoveAll() {
  SetSize(0);
}

bool CRkFileArrayManager::Add(const void* unit) {
  const ScopedLock lock(m_state->lock);
  if (m_state->units.Add(static_cast<const BYTE*>(unit))) return true;
  Trace("CRkFileArrayManager::Add(%X) > return VNULL for Size Extention Failture", Address(unit));
  return false;
}

bool CRkFileArrayManager::InsertAt(int index, const void* unit) {
  const ScopedLock lock(m_state->lock);
  if (m_state->units.Insert(index, static_cast<const BYTE*>(unit))) return true;
  Trace("CRkFileArrayManager::InsertAt(%X) > return VNULL for Size Extention Failture",
        Address(unit));
  return false;
}

void CRkFileArrayManager::RemoveAt(int index) {
  const ScopedLock lock(m_state->lock);
  m_state->units.RemoveAt(index);
}

void CRkFileArrayManager::RemoveAt(CDWordArray& indices) {
  const ScopedLock lock(m_state->lock);
  m_state->units.RemoveAt(indices);
}

void* CRkFileArrayManager::GetArray(int new_size, bool refuse) {
  m_state->lock.Enter();
  if (refuse || !m_state->units.IsReady()) return nullptr;
  if (new_size != -1 && !m_state->units.SetCount(new_size)) return nullptr;
  return m_state->units.Units();
}

void* CRkFileArrayManager::GetBuffer(int index, int new_size) {
  m_state->lock.Enter();
  if (index == -1 || !m_state->units.IsReady()) return nullptr;
  if (new_size != -1 && !m_state->units.SetCount(new_size)) return nullptr;
  return index >= 0 && index < m_state->units.Count() ? m_state->units.At(index) : nullptr;
}

void CRkFileArrayManager::ReleaseArray(bool modified) {
  UnlockCriticalSection(modified);
}

void* CRkFileArrayManager::GetArrayPtr() const {
  return m_state->units.Units();
}

void CRkFileArrayManager::LockCriticalSection() {
  m_state->lock.Enter();
}

void CRkFileArrayManager::UnlockCriticalSection(bool modified) {
  if (modified) m_state->units.RenewModificationStamp();
  m_state->lock.Leave();
}

bool CRkFileArrayManager::RefreshArrayDHF() {
  const ScopedLock lock(m_state->lock);
  return m_state->units.CheckHeader();
}

UnitFile& CRkFileArrayManager::Units() const {
  return m_state->units;
}

bool vdstomgr::SyncArray(CRkFileArrayManager& array) {
  auto& state = SyncAccess::StateOf(array);
  const ScopedLock lock(state.lock);
  return state.units.Sync();
}
