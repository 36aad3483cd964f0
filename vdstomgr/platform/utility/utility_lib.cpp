#include "vdstomgr/platform/utility/utility_lib.h"

#include <charconv>
#include <limits>
#include <memory>
#include <string>

#include "vdstomgr/platform/os/file.h"
#include "vdstomgr/platform/os/os_version.h"
#include "vdstomgr/platform/text/code_page.h"
#include "vdstomgr/platform/text/utf8.h"

using vdstomgr::ViewOf;

namespace {

/// Where the extension's point stands; the length of the name when it has none.
std::size_t FindExtension(std::string_view name) {
  const std::size_t last = name.find_last_of("./\\");
  return last == std::string_view::npos || name[last] != '.' ? name.size() : last;
}

struct CloneName {
  std::string_view original;
  unsigned number = 0;  ///< 0 when the name is no clone's
};

/// Reads "original (number)". Only a number as this library writes it counts, so that the next name
/// is always another one.
CloneName ReadCloneName(std::string_view base) {
  constexpr std::size_t kMostDigits = 9;
  const std::size_t open = base.rfind(" (");
  if (open == std::string_view::npos || base.back() != ')') return {base};
  const std::string_view digits = base.substr(open + 2, base.size() - open - 3);
  unsigned number = 0;
  const auto [end, error] = std::from_chars(digits.begin(), digits.end(), number);
  const bool is_ours = error == std::errc() && end == digits.end() && digits.front() != '0' &&
                       digits.size() <= kMostDigits;
  return is_ours ? CloneName{base.substr(0, open), number} : CloneName{base};
}

}  // namespace

std::uint64_t CUtilityLib::StrToINT64(const char* text) {
  std::string_view view = ViewOf(text);
  view.remove_prefix(std::min(view.find_first_not_of(" \t"), view.size()));
  std::uint64_t number = 0;
  const auto error = std::from_chars(view.data(), view.data() + view.size(), number).ec;
  return error == std::errc::result_out_of_range ? std::numeric_limits<std::uint64_t>::max()
                                                 : number;
}

CString CUtilityLib::GetString(std::uint64_t number) {
  char digits[std::numeric_limits<std::uint64_t>::digits10 + 1];
  const char* const end = std::to_chars(digits, std::end(digits), number).ptr;
  return CString(std::string_view(digits, end));
}

int CUtilityLib::SplitStringByToken(const char* text, char separator, CStringArray& parts) {
  const std::string whole(ViewOf(text));
  parts.RemoveAll();
  for (std::size_t start = 0; !whole.empty() && start <= whole.size();) {
    const std::size_t end = std::min(whole.find(separator, start), whole.size());
    parts.Add(std::string_view(whole).substr(start, end - start));
    start = end + 1;
  }
  return parts.GetSize();
}

CString CUtilityLib::GetKorLeftString(const char* text, int bytes) {
  return vdstomgr::CutToBytes(ViewOf(text), bytes < 0 ? 0 : static_cast<std::size_t>(bytes));
}

CString CUtilityLib::GetFileExt(const char* name) {
  const std::string_view view = ViewOf(name);
  const std::size_t point = FindExtension(view);
  return point == view.size() ? CString() : CString(view.substr(point + 1));
}

CString CUtilityLib::GetCloneFileName(const char* name) {
  const std::string_view view = ViewOf(name);
  const std::size_t point = FindExtension(view);
  const CloneName clone = ReadCloneName(view.substr(0, point));
  CString next(clone.original);
  next.AppendFormat(" (%u)", clone.number + 1);
  return next += view.substr(point);
}

bool CUtilityLib::LoadFileData(const char* path, CBinData& data, int) {
  std::unique_ptr<vdstomgr::os::File> file;
  std::uint64_t size = 0;
  std::size_t count = 0;
  if (vdstomgr::os::Files().Open(vdstomgr::ToUtf8(ViewOf(path)), vdstomgr::os::OpenMode::read,
                                 file) ||
      file->Size(size) || size > std::numeric_limits<DWORD>::max()) {
    return false;
  }
  CBinData loaded;
  const auto bytes = static_cast<DWORD>(size);
  if (file->ReadAt(0, loaded.Allocate(bytes), bytes, count) || count != bytes) return false;
  data = std::move(loaded);
  return true;
}

int CUtilityLib::MbcsFileToUnicodeFile(const char* text, char16_t* wide, int capacity) {
  if (capacity <= 0) return 0;
  const std::string utf8 = vdstomgr::ToUtf8(ViewOf(text));
  int written = 0;
  for (std::string_view rest = utf8; !rest.empty();) {
    const auto [code, bytes] = vdstomgr::DecodeUtf8(rest);
    const bool is_pair = code > 0xFFFF;
    if (written + (is_pair ? 2 : 1) >= capacity) break;
    if (is_pair) wide[written++] = static_cast<char16_t>(0xD7C0 + (code >> 10));
    wide[written++] = static_cast<char16_t>(is_pair ? 0xDC00 | (code & 0x3FF) : code);
    rest.remove_prefix(bytes);
  }
  wide[written] = 0;
  return written;
}

void CUtilityLib::GetOSVersion(CString& name, CString& release) {
  const vdstomgr::os::OsVersion version = vdstomgr::os::GetOsVersion();
  name = version.name;
  release = version.release;
}
