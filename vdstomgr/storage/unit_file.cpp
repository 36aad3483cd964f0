#include "vdstomgr/storage/unit_file.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "vdstomgr/platform/report/report.h"
#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/storage/array_format.h"
#include "vdstomgr/storage/little_endian.h"
#include "vdstomgr/storage/note_storage_error.h"
#include "vdstomgr/storage/unit_moves.h"

namespace vdstomgr {
namespace {

constexpr int kGrowthStep = 10 * 1024 * 1024;

constexpr const char* kLocked = "파일 자체가 외부에서 Lock이 걸려 열지 못하는 상태임";
constexpr const char* kEmptyFile = "파일 초기화가 되어 있지 않은 파일임";
constexpr const char* kNoMap = "Failure of CreateMap";
constexpr const char* kOtherUnitSize =
    "Array Unit Size Dismatch between Requested and File Header Information";

void ShowBox(const std::string& text) {
  ShowMessageBox(FromUtf8("OpenFile >> " + text).c_str());
}

void TraceRefusal(const CString& path, int unit_size, const char* reason) {
  Trace("CRkFileArrayManager::OpenFile((File)%s, (Unit)%d) > return for %s", path.GetString(),
        unit_size, FromUtf8(reason).c_str());
}

}  // namespace

bool UnitFile::Create(const char* path, DWORD array_id, int unit_size) {
  const CString name(path);
  std::unique_ptr<os::ExclusiveFile> file;
  const auto error = unit_size < 1
                         ? std::make_error_code(std::errc::invalid_argument)
                         : os::Files().CreateNew(ToUtf8(name), os::Caching::write_through, file);
  if (NoteStorageError(name.Str(), error)) {
    Trace(
        "CRkFileArrayManager::CreateFileArray((File)%s, (ID)%X, (Unit)%d) > return false for "
        "CreateFile Fail (Error:%d)",
        name.GetString(), static_cast<unsigned>(array_id), unit_size, error.value());
    return false;
  }
  const auto header = ArrayHeader{array_id, static_cast<DWORD>(unit_size), 0}.Encode();
  if (!NoteStorageError(name.Str(), file->SetSize(header.size())) &&
      !NoteStorageError(name.Str(), file->WriteAt(0, header.data(), header.size()))) {
    return true;
  }
  (void)file->Delete();
  Trace(
      "CRkFileArrayManager::CreateFileArray((File)%s, (ID)%X, (Unit)%d) > return false for Failure "
      "of Writing Header",
      name.GetString(), static_cast<unsigned>(array_id), unit_size);
  return false;
}

bool UnitFile::Open(const CString& path, int wanted_unit_size, int mapping_mode, int open_mode) {
  file_.SetStep(kGrowthStep);
  if (!file_.Open(path, mapping_mode, open_mode)) {
    ShowBox(kLocked);
    Trace("CRkFileArrayManager::OpenFile >> %s", FromUtf8(kLocked).c_str());
    return false;
  }
  const auto refuse = [&](const char* reason, bool closes) {
    ShowBox(std::string("return for ") + reason);
    if (closes) Close();
    TraceRefusal(path, wanted_unit_size, reason);
    return false;
  };
  if (file_.Size() == 0) return refuse(kEmptyFile, false);
  is_open_ = file_.CreateMap(0);
  if (!is_open_) return refuse(kNoMap, true);
  if (TakeView() && file_.Reserve(0, kArrayHeaderBytes)) {
    unit_size_ = static_cast<int>(ArrayHeader::Decode(view_).unit_size);
    if (wanted_unit_size != -1 && wanted_unit_size != unit_size_) {
      return refuse(kOtherUnitSize, true);
    }
  }
  if (!CheckHeader()) {
    ShowBox("RefreshArrayDHF false");
    Close();
    return false;
  }
  // Units are written where they lie, and a file that was copied may have holes.
  return file_.Reserve(0, kArrayHeaderBytes + DataBytes()) || refuse(kNoMap, true);
}

void UnitFile::Close() {
  file_.Close();
  is_open_ = false;
  view_ = nullptr;
  view_bytes_ = 0;
  unit_size_ = 0;
  stamp_ = 0;
  view_stamp_ = 0;
}

bool UnitFile::TakeView() {
  view_ = file_.View(0, 0);
  if (view_ == nullptr && file_.CreateMap(0)) view_ = file_.View(0, 0);
  view_bytes_ = view_ != nullptr ? file_.Size() : 0;
  stamp_ = view_stamp_ = stamps_.New();
  return view_ != nullptr;
}

bool UnitFile::CheckHeader() {
  const bool is_valid = view_bytes_ >= kArrayHeaderBytes && unit_size_ > 0 &&
                        DataBytes() <= view_bytes_ - kArrayHeaderBytes &&
                        DataBytes() / Unit() <= std::numeric_limits<int>::max();
  if (!is_valid) {
    Trace(
        "CRkFileArrayManager::RefreshArrayDHF() > return false for Invalid Header (File Size "
        "Dismatch)");
    return false;
  }
  stamp_ = stamps_.New();
  Trace("CRkFileArrayManager::RefreshArrayDHF() : Update LastModified [%X]",
        static_cast<unsigned>(stamp_));
  return true;
}

DWORD UnitFile::DataBytes() const {
  return LoadLittle<DWORD>(view_ + kArrayDataBytesAt);
}

int UnitFile::Count() {
  return IsReady() ? static_cast<int>(DataBytes() / static_cast<DWORD>(unit_size_)) : 0;
}

DWORD UnitFile::ArrayId() {
  return IsReady() ? ArrayHeader::Decode(view_).array_id : 0;
}

BYTE* UnitFile::Units() {
  return IsReady() ? At(0) : nullptr;
}

BYTE* UnitFile::At(int index) const {
  assert(view_ != nullptr && index >= 0);
  return view_ + kArrayHeaderBytes + Unit() * static_cast<std::size_t>(index);
}

bool UnitFile::IsCount(int count) const {
  return count >= 0 && static_cast<DWORD>(count) <=
                           std::numeric_limits<DWORD>::max() / static_cast<DWORD>(Unit());
}

bool UnitFile::MakeRoom(int count) {
  const std::uint64_t bytes = std::uint64_t{Unit()} * static_cast<DWORD>(count) + kArrayHeaderBytes;
  if (bytes > view_bytes_) {
    file_.EndView();
    const bool grown = file_.Grow(bytes);
    if (!TakeView() || !grown || bytes > view_bytes_) return false;
  }
  return file_.Reserve(0, bytes);
}

template <class Fill>
bool UnitFile::SetCountAfter(int count, Fill fill) {
  if (!IsReady() || !IsCount(count)) return false;
  if (count == Count()) return true;
  const bool has_room = MakeRoom(count);
  stamp_ = stamps_.New();
  Trace("CRkFileArrayManager::SetSize() : Update LastModified [%X]", static_cast<unsigned>(stamp_));
  if (!has_room) return false;
  fill();
  PublishLittle(view_ + kArrayDataBytesAt, static_cast<DWORD>(Unit()) * static_cast<DWORD>(count));
  return true;
}

bool UnitFile::SetCount(int count) {
  return SetCountAfter(count, [] {});
}

bool UnitFile::Insert(int index, const BYTE* unit) {
  const int count = Count();
  if (!IsReady() || unit == nullptr || index < 0 || index > count) return false;
  if (count == std::numeric_limits<int>::max()) return false;
  std::vector<BYTE> own_copy;
  if (unit >= view_ && unit < view_ + view_bytes_) {
    own_copy.assign(unit, unit + unit_size_);
    unit = own_copy.data();
  }
  const auto fill = [&] { std::memcpy(At(count), index == count ? unit : At(count - 1), Unit()); };
  if (!SetCountAfter(count + 1, fill)) return false;
  if (index < count) {
    MoveUp(At(index), static_cast<std::size_t>(count - 1 - index) * Unit(), Unit());
    std::memcpy(At(index), unit, Unit());
  }
  stamp_ = stamps_.New();
  return true;
}

void UnitFile::RemoveAt(int index) {
  const int count = Count();
  if (index < 0 || index >= count) return;
  MoveDown(At(index + 1), static_cast<std::size_t>(count - 1 - index) * Unit(), Unit());
  SetCount(count - 1);
}

void UnitFile::RemoveAt(CDWordArray& indices) {
  std::sort(indices.begin(), indices.end(), [](DWORD left, DWORD right) {
    return static_cast<std::int32_t>(left) < static_cast<std::int32_t>(right);
  });
  const int count = Count();
  int kept = 0;
  int next = 0;
  const auto keep_until = [&](int end) {
    const auto run = static_cast<std::size_t>(end - next) * Unit();
    const auto distance = static_cast<std::size_t>(next - kept) * Unit();
    if (run != 0 && distance != 0) MoveDown(At(next), run, distance);
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
  SetCount(kept);
}

void UnitFile::RenewModificationStamp() {
  if (view_ != nullptr) stamp_ = stamps_.New();
}

}  // namespace vdstomgr
