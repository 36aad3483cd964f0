#include "vdstomgr/storage/array_file.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "vdstomgr/platform/framework/cstring.h"
#include "vdstomgr/platform/os/file.h"
#include "vdstomgr/platform/os/lock.h"
#include "vdstomgr/platform/report/report.h"
#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/storage/file_mapper.h"
#include "vdstomgr/storage/little_endian.h"
#include "vdstomgr/storage/stamp.h"
#include "vdstomgr/storage/unit_moves.h"

namespace os = vdstomgr::os;
using vdstomgr::LoadLittle;
using vdstomgr::NewStamp;
using vdstomgr::ScopedLock;
using vdstomgr::StoreLittle;
using vdstomgr::Trace;

namespace {

constexpr std::size_t kHeaderBytes = 32;
constexpr std::size_t kIdAt = 12;
constexpr std::size_t kUnitSizeAt = 16;
constexpr std::size_t kDataBytesAt = 24;
constexpr BYTE kStart[] = {0xFB, 0, 'A', 'R', 'R', 'A', 'Y', 0, '0', '1', '0', '0'};
constexpr int kGrowthStep = 10 * 1024 * 1024;

constexpr const char* kLocked = "파일 자체가 외부에서 Lock이 걸려 열지 못하는 상태임";
constexpr const char* kEmptyFile = "파일 초기화가 되어 있지 않은 파일임";
constexpr const char* kNoMap = "Failure of CreateMap";
constexpr const char* kOtherUnitSize =
    "Array Unit Size Dismatch between Requested and File Header Information";

std::array<BYTE, kHeaderBytes> HeaderOf(DWORD array_id, int unit_size) {
  std::array<BYTE, kHeaderBytes> header{};
  std::copy(std::begin(kStart), std::end(kStart), header.begin());
  StoreLittle(header.data() + kIdAt, array_id);
  StoreLittle(header.data() + kUnitSizeAt, static_cast<DWORD>(unit_size));
  return header;
}

void ShowBox(const std::string& text) {
  vdstomgr::ShowMessageBox(vdstomgr::FromUtf8("OpenFile >> " + text).c_str());
}

void TraceRefusal(const CString& path, int unit_size, const char* reason) {
  Trace("CRkFileArrayManager::OpenFile((File)%s, (Unit)%d) > return for %s", path.GetString(),
        unit_size, vdstomgr::FromUtf8(reason).c_str());
}

}  // namespace

struct CRkFileArrayManager::State {
  vdstomgr::RecursiveLock lock;
  CRkFileMapper mapper;
  bool opened = false;
  int unit_size = 0;
  BYTE* view = nullptr;  ///< the whole file; null when closed, or after a failed growth
  std::uint64_t view_bytes = 0;
  DWORD view_stamp = 0;
  DWORD stamp = 0;

  bool Open(const CString& path, int wanted_unit_size, int mapping_mode, int open_mode);
  void Close();
  bool CheckHeader();

  /// Whether there are units to work on. After a growth that lost the view, tries to get it back.
  bool IsReady() { return view != nullptr || (opened && TakeView()); }
  int Count() { return IsReady() ? static_cast<int>(DataBytes() / Unit()) : 0; }
  std::size_t Unit() const { return static_cast<std::size_t>(unit_size); }
  BYTE* At(int index) const { return Units() + Unit() * static_cast<std::size_t>(index); }
  BYTE* Units() const { return view + kHeaderBytes; }
  /// Sets the number of units; `fill` writes the new ones before they count.
  template <class Fill>
  bool SetCount(int count, Fill fill);
  bool Insert(int index, const BYTE* unit);

 private:
  DWORD DataBytes() const { return LoadLittle<DWORD>(view + kDataBytesAt); }
  bool TakeView();
  bool IsCount(int count) const;
  bool MakeRoom(int count);
};

bool CRkFileArrayManager::State::TakeView() {
  view = mapper.LockFile(0, 0);
  if (view == nullptr && mapper.CreateMap(0, nullptr)) view = mapper.LockFile(0, 0);
  view_bytes = view != nullptr ? mapper.GetFileSize() : 0;
  stamp = view_stamp = NewStamp();
  return view != nullptr;
}

bool CRkFileArrayManager::State::CheckHeader() {
  const bool is_valid = view_bytes >= kHeaderBytes && unit_size > 0 &&
                        DataBytes() <= view_bytes - kHeaderBytes &&
                        DataBytes() / Unit() <= std::numeric_limits<int>::max();
  if (!is_valid) {
    Trace(
        "CRkFileArrayManager::RefreshArrayDHF() > return false for Invalid Header (File Size "
        "Dismatch)");
    return false;
  }
  stamp = NewStamp();
  Trace("CRkFileArrayManager::RefreshArrayDHF() : Update LastModified [%X]",
        static_cast<unsigned>(stamp));
  return true;
}

bool CRkFileArrayManager::State::Open(const CString& path, int wanted_unit_size, int mapping_mode,
                                      int open_mode) {
  mapper.SetUnitExtensionSize(kGrowthStep);
  if (!mapper.OpenFile(path, mapping_mode, open_mode)) {
    ShowBox(kLocked);
    Trace("CRkFileArrayManager::OpenFile >> %s", vdstomgr::FromUtf8(kLocked).c_str());
    return false;
  }
  const auto refuse = [&](const char* reason, bool closes) {
    ShowBox(std::string("return for ") + reason);
    if (closes) Close();
    TraceRefusal(path, wanted_unit_size, reason);
    return false;
  };
  if (mapper.GetFileSize() == 0) return refuse(kEmptyFile, false);
  opened = mapper.CreateMap(0, nullptr);
  if (!opened) return refuse(kNoMap, true);
  if (TakeView() && view_bytes >= kHeaderBytes) {
    unit_size = static_cast<int>(LoadLittle<DWORD>(view + kUnitSizeAt));
    if (wanted_unit_size != -1 && wanted_unit_size != unit_size)
      return refuse(kOtherUnitSize, true);
  }
  if (CheckHeader()) return true;
  ShowBox("RefreshArrayDHF false");
  Close();
  return false;
}

void CRkFileArrayManager::State::Close() {
  mapper.CloseFile();
  opened = false;
  view = nullptr;
  view_bytes = 0;
  unit_size = 0;
  stamp = 0;
  view_stamp = 0;
}

bool CRkFileArrayManager::State::IsCount(int count) const {
  return count >= 0 && static_cast<DWORD>(count) <=
                           std::numeric_limits<DWORD>::max() / static_cast<DWORD>(Unit());
}

bool CRkFileArrayManager::State::MakeRoom(int count) {
  const std::uint64_t bytes = std::uint64_t{Unit()} * static_cast<DWORD>(count) + kHeaderBytes;
  if (bytes <= view_bytes) return true;
  mapper.UnlockFile();
  const bool grown = mapper.SetFileSize(bytes);
  return TakeView() && grown && bytes <= view_bytes;
}

template <class Fill>
bool CRkFileArrayManager::State::SetCount(int count, Fill fill) {
  if (!IsReady() || !IsCount(count)) return false;
  if (count == Count()) return true;
  const bool has_room = MakeRoom(count);
  stamp = NewStamp();
  Trace("CRkFileArrayManager::SetSize() : Update LastModified [%X]", static_cast<unsigned>(stamp));
  if (!has_room) return false;
  fill();
  vdstomgr::PublishLittle(view + kDataBytesAt,
                          static_cast<DWORD>(Unit()) * static_cast<DWORD>(count));
  return true;
}

bool CRkFileArrayManager::State::Insert(int index, const BYTE* unit) {
  const int count = Count();
  if (!IsReady() || unit == nullptr || index < 0 || index > count) return false;
  if (count == std::numeric_limits<int>::max()) return false;
  std::vector<BYTE> own_copy;
  if (unit >= view && unit < view + view_bytes) {
    own_copy.assign(unit, unit + unit_size);
    unit = own_copy.data();
  }
  const auto fill = [&] { std::memcpy(At(count), index == count ? unit : At(count - 1), Unit()); };
  if (!SetCount(count + 1, fill)) return false;
  if (index < count) {
    vdstomgr::MoveUp(At(index), static_cast<std::size_t>(count - 1 - index) * Unit(), Unit());
    std::memcpy(At(index), unit, Unit());
  }
  stamp = NewStamp();
  return true;
}

bool CRkFileArrayManager::CreateFileArray(const char* path, DWORD array_id, int unit_size) {
  const CString name(path);
  const std::string native = vdstomgr::ToUtf8(name);
  std::unique_ptr<os::ExclusiveFile> file;
  const auto error = unit_size < 1
                         ? std::make_error_code(std::errc::invalid_argument)
                         : os::Files().CreateNew(native, os::Caching::write_through, file);
  if (error) {
    Trace(
        "CRkFileArrayManager::CreateFileArray((File)%s, (ID)%X, (Unit)%d) > return false for "
        "CreateFile Fail (Error:%d)",
        name.GetString(), static_cast<unsigned>(array_id), unit_size, error.value());
    return false;
  }
  const auto header = HeaderOf(array_id, unit_size);
  if (!file->SetSize(header.size()) && !file->WriteAt(0, header.data(), header.size()) &&
      !file->Close()) {
    return true;
  }
  file.reset();
  (void)os::Files().Delete(native);
  Trace(
      "CRkFileArrayManager::CreateFileArray((File)%s, (ID)%X, (Unit)%d) > return false for Failure "
      "of Writing Header",
      name.GetString(), static_cast<unsigned>(array_id), unit_size);
  return false;
}

CRkFileArrayManager::CRkFileArrayManager() : m_state(std::make_shared<State>()) {}

CRkFileArrayManager::~CRkFileArrayManager() = default;

CRkFileArrayManager::CRkFileArrayManager(const CRkFileArrayManager& other)
    : m_state(other.m_state) {
  const ScopedLock lock(other.m_state->lock);
  if (!m_state->mapper.IsFileOpened()) m_state = std::make_shared<State>();
}

CRkFileArrayManager& CRkFileArrayManager::operator=(const CRkFileArrayManager& other) {
  if (this != &other) m_state = CRkFileArrayManager(other).m_state;
  return *this;
}

bool CRkFileArrayManager::OpenFile(const char* path, int unit_size, int mapping_mode,
                                   int open_mode) {
  const ScopedLock lock(m_state->lock);
  return m_state->Open(path, unit_size, mapping_mode, open_mode);
}

void CRkFileArrayManager::CloseFile() {
  const ScopedLock lock(m_state->lock);
  m_state->Close();
}

int CRkFileArrayManager::GetSize() const {
  const ScopedLock lock(m_state->lock);
  return m_state->Count();
}

DWORD CRkFileArrayManager::GetArrayID() const {
  const ScopedLock lock(m_state->lock);
  return m_state->IsReady() ? LoadLittle<DWORD>(m_state->view + kIdAt) : 0;
}

bool CRkFileArrayManager::SetSize(int count) {
  const ScopedLock lock(m_state->lock);
  return m_state->SetCount(count, [] {});
}

void CRkFileArrayManager::RemoveAll() {
  SetSize(0);
}

bool CRkFileArrayManager::Add(const void* unit) {
  const ScopedLock lock(m_state->lock);
  if (m_state->Insert(m_state->Count(), static_cast<const BYTE*>(unit))) return true;
  Trace("CRkFileArrayManager::Add(%X) > return VNULL for Size Extention Failture",
        static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(unit)));
  return false;
}

bool CRkFileArrayManager::InsertAt(int index, const void* unit) {
  const ScopedLock lock(m_state->lock);
  if (m_state->Insert(index, static_cast<const BYTE*>(unit))) return true;
  Trace("CRkFileArrayManager::InsertAt(%X) > return VNULL for Size Extention Failture",
        static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(unit)));
  return false;
}

void CRkFileArrayManager::RemoveAt(int index) {
  const ScopedLock lock(m_state->lock);
  const int count = m_state->Count();
  if (index < 0 || index >= count) return;
  vdstomgr::MoveDown(m_state->At(index + 1),
                     static_cast<std::size_t>(count - 1 - index) * m_state->Unit(),
                     m_state->Unit());
  SetSize(count - 1);
}

void CRkFileArrayManager::RemoveAt(CDWordArray& indices) {
  const ScopedLock lock(m_state->lock);
  std::sort(indices.begin(), indices.end(), [](DWORD left, DWORD right) {
    return static_cast<std::int32_t>(left) < static_cast<std::int32_t>(right);
  });
  const int count = m_state->Count();
  int kept = 0;
  int next = 0;
  const auto keep_until = [&](int end) {
    const auto run = static_cast<std::size_t>(end - next) * m_state->Unit();
    const auto distance = static_cast<std::size_t>(next - kept) * m_state->Unit();
    if (run != 0 && distance != 0) vdstomgr::MoveDown(m_state->At(next), run, distance);
    kept += end - next;
    next = end;
  };
  for (const DWORD entry : indices) {
    const int index = static_cast<std::int32_t>(entry);
    if (index < next || index >= count) continue;  // repeated, or no unit there
    keep_until(index);
    next = index + 1;
  }
  if (next < count) keep_until(count);
  RenewModificationStamp();
  SetSize(kept);
}

void* CRkFileArrayManager::GetArray(int new_size, bool refuse) {
  m_state->lock.Enter();
  if (refuse || !m_state->IsReady()) return nullptr;
  if (new_size != -1 && !SetSize(new_size)) return nullptr;
  return m_state->Units();
}

void* CRkFileArrayManager::GetBuffer(int index, int new_size) {
  m_state->lock.Enter();
  if (index == -1 || !m_state->IsReady()) return nullptr;
  if (new_size != -1 && !SetSize(new_size)) return nullptr;
  return index >= 0 && index < m_state->Count() ? m_state->At(index) : nullptr;
}

void CRkFileArrayManager::ReleaseArray(bool modified) {
  if (modified) RenewModificationStamp();
  m_state->lock.Leave();
}

void* CRkFileArrayManager::GetArrayPtr() const {
  return m_state->IsReady() ? m_state->Units() : nullptr;
}

void CRkFileArrayManager::LockCriticalSection() {
  m_state->lock.Enter();
}

void CRkFileArrayManager::UnlockCriticalSection(bool modified) {
  ReleaseArray(modified);
}

bool CRkFileArrayManager::RefreshArrayDHF() {
  const ScopedLock lock(m_state->lock);
  return m_state->CheckHeader();
}

DWORD CRkFileArrayManager::ModificationStamp() const {
  return m_state->stamp;
}

void CRkFileArrayManager::RenewModificationStamp() {
  if (m_state->view != nullptr) m_state->stamp = NewStamp();
}

DWORD CRkFileArrayManager::ViewStamp() const {
  return m_state->view_stamp;
}

int CRkFileArrayManager::UnitSize() const {
  return m_state->unit_size;
}

bool vdstomgr::SyncArray(CRkFileArrayManager& array) {
  const ScopedLock lock(array.m_state->lock);
  return SyncFile(array.m_state->mapper);
}
