#include "vdstomgr/records/record_rules.h"

#include "vdstomgr/platform/utility/utility_lib.h"
#include "vdstomgr/records/fixed_text.h"

namespace vdstomgr {

namespace {

/// Of a shortened name, what its start and its extension share; the point comes on top.
constexpr int kShortenedBytes = 515;

}  // namespace

void CopyFileName(char (&field)[kFileNameBytes], const char* name) {
  if (name == nullptr) return;
  const std::string_view whole = name;
  if (whole.size() < kFileNameBytes) return CopyToFixed(field, whole);
  const CString extension = CUtilityLib::GetFileExt(name);
  // An "extension" that leaves the start no room is none: the name is cut as a whole then.
  const int kept = kShortenedBytes - extension.GetLength();
  if (kept <= 0) return CopyToFixed(field, whole);
  CopyToFixed(field, (CUtilityLib::GetKorLeftString(name, kept) + "." + extension).Str());
}

}  // namespace vdstomgr
