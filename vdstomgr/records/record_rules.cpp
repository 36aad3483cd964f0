#include "vdstomgr/records/record_rules.h"

#include <algorithm>
#include <limits>

#include "vdstomgr/platform/os/local_time.h"
#include "vdstomgr/platform/utility/utility_lib.h"
#include "vdstomgr/records/fixed_text.h"

namespace vdstomgr {

namespace {

constexpr std::int64_t kDay = 86400;

/// Of a shortened name, what its start and its extension share; the point comes on top.
constexpr int kShortenedBytes = 515;

}  // namespace

std::int32_t LocalMidnight(std::int32_t time) {
  const std::int64_t wall_clock = os::WallClockOf(time);
  const std::int64_t into_day = (wall_clock % kDay + kDay) % kDay;
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(
      std::clamp<std::int64_t>(os::SecondsOf(wall_clock - into_day), Limits::min(), Limits::max()));
}

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
