#include "vdstomgr/platform/os/time_zone.h"

#include <map>

#include "vdstomgr/platform/framework/types.h"

namespace vdstomgr::os {
namespace {

constexpr std::int64_t kTicksPerSecond = 10'000'000;
constexpr std::int64_t kTicksTo1970 = 116'444'736'000'000'000;

/// The zone's rules by year, as far as this thread has asked for them since ReloadTimeZone.
std::map<WORD, TIME_ZONE_INFORMATION>& KnownRules() {
  thread_local std::map<WORD, TIME_ZONE_INFORMATION> rules;
  return rules;
}

const TIME_ZONE_INFORMATION& RulesOf(WORD year) {
  const auto [entry, is_new] = KnownRules().try_emplace(year);
  if (is_new) GetTimeZoneInformationForYear(year, nullptr, &entry->second);
  return entry->second;
}

/// The date and time of day in UTC; false for a time that the system cannot write so.
bool ToCalendar(std::int64_t seconds, SYSTEMTIME& utc) {
  constexpr std::int64_t kLargest = INT64_MAX / kTicksPerSecond - kTicksTo1970 / kTicksPerSecond;
  if (seconds < -kTicksTo1970 / kTicksPerSecond || seconds > kLargest) return false;
  ULARGE_INTEGER ticks{};
  ticks.QuadPart = static_cast<ULONGLONG>(seconds * kTicksPerSecond + kTicksTo1970);
  const FILETIME time{ticks.LowPart, ticks.HighPart};
  return FileTimeToSystemTime(&time, &utc);
}

std::int64_t SecondsOfCalendar(const SYSTEMTIME& calendar) {
  FILETIME time{};
  SystemTimeToFileTime(&calendar, &time);
  ULARGE_INTEGER ticks{};
  ticks.LowPart = time.dwLowDateTime;
  ticks.HighPart = time.dwHighDateTime;
  return (static_cast<std::int64_t>(ticks.QuadPart) - kTicksTo1970) / kTicksPerSecond;
}

}  // namespace

/// The rules are those of the year on the wall, which may be another one than in UTC.
std::int64_t ZoneOffsetAt(std::int64_t seconds) {
  SYSTEMTIME utc{};
  SYSTEMTIME local{};
  if (!ToCalendar(seconds, utc)) return 0;
  if (!SystemTimeToTzSpecificLocalTime(&RulesOf(utc.wYear), &utc, &local)) return 0;
  if (local.wYear != utc.wYear) {
    SystemTimeToTzSpecificLocalTime(&RulesOf(local.wYear), &utc, &local);
  }
  return SecondsOfCalendar(local) - seconds;
}

void ReloadTimeZone() {
  KnownRules().clear();
}

std::int64_t CoarseSeconds() {
  return static_cast<std::int64_t>(GetTickCount64() / 1000);
}

}  // namespace vdstomgr::os
