#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include "tests/system.h"
#include "vdstomgr/platform/os/local_time.h"
#include "vdstomgr/platform/utility/utility_lib.h"

namespace {

class TimeText : public testing::Test {
 protected:
  ~TimeText() override { LeaveZone(); }
};

TEST_F(TimeText, FollowsTheZone) {
  const struct {
    const char* zone;
    std::int32_t seconds;
    const char* text;
  } kCases[] = {
    {"UTC", 0, "1970-01-01 00:00:00"},
    {"UTC", 951782399, "2000-02-28 23:59:59"},
    {"UTC", 951782400, "2000-02-29 00:00:00"},
    {"UTC", INT32_MAX, "2038-01-19 03:14:07"},
    {"UTC", INT32_MIN, "1901-12-13 20:45:52"},
    {"Asia/Seoul", 0, "1970-01-01 09:00:00"},
    {"Asia/Seoul", 946652400, "2000-01-01 00:00:00"},
#if !defined(_WIN32)                                   // keeps no rules that old
    {"Asia/Seoul", 579200400, "1988-05-10 03:00:00"},  // summer time of the Olympic year
#endif
    {"America/New_York", 1143961199, "2006-04-02 01:59:59"},
    {"America/New_York", 1143961200, "2006-04-02 03:00:00"},
    {"America/New_York", 1162099800, "2006-10-29 01:30:00"},  // the first of two
    {"America/New_York", 1162108800, "2006-10-29 03:00:00"},
  };
  for (const auto& [zone, seconds, text] : kCases) {
    if (!EnterZone(zone)) continue;
    EXPECT_EQ(CUtilityLib::GetTime(seconds), text) << zone;
    EXPECT_EQ(CUtilityLib::GetTime(text), seconds) << zone << " " << text;
  }
}

TEST_F(TimeText, SettlesTimesThatAreSkippedOrShownTwice) {
  if (!EnterZone("America/New_York")) GTEST_SKIP() << "in another zone";
  EXPECT_EQ(CUtilityLib::GetTime("2006-04-02 02:30:00"), 1143963000);  // 03:30 summer time
  EXPECT_EQ(CUtilityLib::GetTime(1162103400), "2006-10-29 01:30:00");  // the second of two
  EXPECT_EQ(CUtilityLib::GetTime(-1), CUtilityLib::GetTime(0));
  EXPECT_EQ(CUtilityLib::ConvertTimeForDB(-1), "1969-12-31 19:00:00");
#if !defined(_WIN32)        // keeps no rules that old
  EnterZone("Asia/Seoul");  // summer time began at midnight, before 1970
  const auto after_gap = CUtilityLib::GetTime("1955-05-05 01:30:00");
  EXPECT_EQ(CUtilityLib::GetTime("1955-05-05 00:30:00"), after_gap);
#endif
}

TEST_F(TimeText, RefusesWhatIsNoTime) {
  if (!EnterZone("UTC")) GTEST_SKIP() << "in another zone";
  for (const char* text :
       {"", "2000-01-01", "2000-01-01 00:00:0", "2000-01-01 00:00:000", "2000-01-01T00:00:00",
        "2000-13-01 00:00:00", "2000-00-01 00:00:00", "2000-02-30 00:00:00", "1900-02-29 00:00:00",
        "2001-02-29 00:00:00", "2000-01-01 24:00:00", "2000-01-01 00:60:00", "2000-01-01 00:00:60",
        " 000-01-01 00:00:00", "+200-01-01 00:00:00", "2038-01-19 03:14:08", "0000-01-01 00:00:00",
        "9999-12-31 23:59:59"}) {
    EXPECT_EQ(CUtilityLib::GetTime(text), -1) << text;
  }
  EXPECT_EQ(CUtilityLib::GetTime(nullptr), -1);
}

#if defined(_WIN32)
NOT_ON_WINDOWS(TimeText, AgreesWithTheSystemThroughTheYears, "offers no second way to ask")
#else
TEST_F(TimeText, AgreesWithTheSystemThroughTheYears) {
  std::int64_t step = 0;
  for (const char* zone : {"Asia/Seoul", "America/Nuuk", "Europe/London", "Australia/Lord_Howe",
                           "Pacific/Apia", "Africa/Casablanca", "Asia/Kathmandu"}) {
    EnterZone(zone);
    tzset();
    for (std::int64_t seconds = INT32_MIN; seconds <= INT32_MAX; seconds += step) {
      constexpr std::int64_t k2005 = 1'104'537'600, kNarrowEnd = k2005 + 5 * 366 * 86'400;
      step = seconds >= k2005 && seconds < kNarrowEnd ? 1'795 : 1'234'567;
      const time_t instant = seconds;
      tm local{};
      localtime_r(&instant, &local);
      const std::int64_t wall_clock = seconds + local.tm_gmtoff;
      ASSERT_EQ(vdstomgr::os::WallClockOf(seconds), wall_clock) << zone << " " << seconds;
      const std::int64_t back = vdstomgr::os::SecondsOf(wall_clock);
      ASSERT_LE(back, seconds) << zone;
      ASSERT_EQ(vdstomgr::os::WallClockOf(back), wall_clock) << zone << " " << seconds;
    }
  }
}
#endif

}  // namespace
