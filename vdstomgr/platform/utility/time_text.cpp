#include <array>
#include <chrono>
#include <limits>

#include "vdstomgr/platform/os/local_time.h"
#include "vdstomgr/platform/utility/utility_lib.h"

namespace {

using namespace std::chrono;

constexpr std::string_view kForm = "0000-00-00 00:00:00";

bool HasForm(std::string_view text) {
  if (text.size() != kForm.size()) return false;
  for (std::size_t i = 0; i < kForm.size(); ++i) {
    const bool is_digit = text[i] >= '0' && text[i] <= '9';
    if (kForm[i] == '0' ? !is_digit : text[i] != kForm[i]) return false;
  }
  return true;
}

int Number(std::string_view text, std::size_t first, std::size_t digits) {
  int number = 0;
  for (const char digit : text.substr(first, digits)) number = number * 10 + (digit - '0');
  return number;
}

void PutNumber(int number, char* last_digit, int digits) {
  for (; digits > 0; --digits, number /= 10) *last_digit-- = static_cast<char>('0' + number % 10);
}

}  // namespace

std::int32_t CUtilityLib::GetTime(const char* text) {
  const std::string_view view = vdstomgr::ViewOf(text);
  if (!HasForm(view)) return -1;
  const year_month_day date{year(Number(view, 0, 4)),
                            month(static_cast<unsigned>(Number(view, 5, 2))),
                            day(static_cast<unsigned>(Number(view, 8, 2)))};
  const int hour = Number(view, 11, 2), minute = Number(view, 14, 2), second = Number(view, 17, 2);
  if (!date.ok() || hour > 23 || minute > 59 || second > 59) return -1;
  const sys_seconds wall_clock = sys_days(date) + hours(hour) + minutes(minute) + seconds(second);
  const std::int64_t time = vdstomgr::os::SecondsOf(wall_clock.time_since_epoch().count());
  using Limits = std::numeric_limits<std::int32_t>;
  return time < Limits::min() || time > Limits::max() ? -1 : static_cast<std::int32_t>(time);
}

CString CUtilityLib::GetTime(std::int32_t time) {
  const sys_seconds wall_clock(seconds(vdstomgr::os::WallClockOf(time == -1 ? 0 : time)));
  const sys_days midnight = floor<days>(wall_clock);
  const year_month_day date(midnight);
  const auto of_day = static_cast<int>((wall_clock - midnight).count());
  std::array<char, kForm.size()> text;
  kForm.copy(text.data(), text.size());
  PutNumber(static_cast<int>(date.year()), &text[3], 4);
  PutNumber(static_cast<int>(static_cast<unsigned>(date.month())), &text[6], 2);
  PutNumber(static_cast<int>(static_cast<unsigned>(date.day())), &text[9], 2);
  PutNumber(of_day / 3600, &text[12], 2);
  PutNumber(of_day / 60 % 60, &text[15], 2);
  PutNumber(of_day % 60, &text[18], 2);
  return CString(std::string_view(text.data(), text.size()));
}

CString CUtilityLib::ConvertTimeForDB(std::int32_t time) {
  return GetTime(time);
}
